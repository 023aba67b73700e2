#pragma once

#include <QtDBus/QDBusConnection>

#include "platform/linux/common/BusService.h"
#include "platform/linux/tray/X11Tray.h"
#include "settings/DesktopTray.h"

namespace quillmere {

/// The trays of the Linux desktop: one that is told of icons over the session bus, as most have it, and one that embeds
/// windows of the X server.
///
/// Qt asks once which kind there is, when the first icon is made, and keeps to it; so nothing is there before the bus
/// has answered, and later only what is of the first kind.
class LiveTray final : public DesktopTray {
 public:
  explicit LiveTray(const QDBusConnection& bus);

  bool isThere() const override { return kind_ == Kind::bus ? hasHost_ : kind_ == Kind::x11 && x11_.isThere(); }

 private:
  enum class Kind { unknown, bus, x11 };
  void askForWatcher(const QDBusConnection& bus);
  void askForHost(BusService& watcher);
  void setHost(bool isThere);
  void settle();

  Kind kind_ = Kind::unknown;
  bool hasWatcher_ = true;  ///< until the bus says otherwise
  bool hasHost_ = false;
  bool wasThere_ = false;
  QObject answers_;
  X11Tray x11_;
  BusService watcher_;
};

}  // namespace quillmere
