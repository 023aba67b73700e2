#pragma once

#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>

#include "controls/Appearance.h"
#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "platform/linux/appearance/GnomeAppearance.h"
#include "platform/linux/appearance/KdeAppearance.h"
#include "platform/linux/appearance/PortalAppearance.h"
#include "platform/linux/appearance/XSettingsAppearance.h"

namespace quillmere {

/// Where the desktop's appearance is learnt.
struct AppearanceSources {
  std::function<QDBusConnection()> sessionBus = &QDBusConnection::sessionBus;  ///< called on a background thread
  QString kdeSettings;  ///< KDE's settings file, on that desktop; else GNOME's settings count

  static AppearanceSources live();
};

/// Follows how the desktop wants its programs to look. What its own files and the X server tell is told within the
/// constructor; the portal, which may be slow to start or never answer, is heard when it speaks, and then comes first.
class DesktopAppearance {
 public:
  DesktopAppearance(Executor& executor, AppearanceSources sources, std::function<void(const Appearance&)> told);

 private:
  void tell() const;

  std::function<void(const Appearance&)> told_;
  Appearance portalTells_;
  Appearance xSettingsTell_;
  Appearance settingsTell_;
  std::unique_ptr<PortalAppearance> portal_;
  std::unique_ptr<KdeAppearance> kde_;
  std::unique_ptr<GnomeAppearance> gnome_;
  std::unique_ptr<XSettingsAppearance> xSettings_;
  bool isComplete_ = false;  ///< the sources that answer at once have
  Lifetime lifetime_;
};

}  // namespace quillmere
