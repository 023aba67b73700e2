#pragma once

#include <QtCore/QMap>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <functional>

#include "controls/Appearance.h"
#include "platform/linux/common/BusService.h"

namespace quillmere {

/// The desktop's settings as the portal gives them, by namespace and key. Wraps of variants are taken off.
using PortalSettings = QMap<QString, QVariantMap>;
Appearance appearanceOf(const PortalSettings& settings);

/// Follows the settings portal (https://flatpak.github.io/xdg-desktop-portal/, org.freedesktop.portal.Settings), which
/// it has the bus start. Waits for nothing; a portal that goes leaves what it told last.
class PortalAppearance {
 public:
  PortalAppearance(const QDBusConnection& bus, std::function<void(const Appearance&)> told);

 private:
  void follow(BusService& portal);
  void tell();

  std::function<void(const Appearance&)> told_;
  PortalSettings settings_;
  BusService portal_;
};

}  // namespace quillmere
