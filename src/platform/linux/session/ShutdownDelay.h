#pragma once

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "platform/linux/common/BusService.h"

namespace quillmere {

/// Has the machine wait, while it goes down, for what is not saved yet: logind gives every program some seconds that
/// asks for them. Asked for only as long as there is something, so that nobody is waited for who has nothing to do.
/// Without logind, and with one that does not answer, nothing is different.
class ShutdownDelay {
 public:
  /// `bus` is called on a background thread. `save` is told when the machine goes down.
  ShutdownDelay(Executor& executor, std::function<QDBusConnection()> bus, std::function<void()> save);

  void setNeeded(bool isNeeded);
  /// Whether logind has given its word.
  bool isHeld() const { return hold_.has_value(); }

 private:
  void follow(const QDBusConnection& bus);
  void appear(BusService& logind);
  void ask();

  std::function<void()> save_;
  bool isNeeded_ = false;
  bool isAsked_ = false;  ///< and not answered yet
  BusService* logind_ = nullptr;
  std::optional<QDBusUnixFileDescriptor> hold_;  ///< closing it lets go
  std::unique_ptr<BusService> service_;
  Lifetime lifetime_;
};

}  // namespace quillmere
