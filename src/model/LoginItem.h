#pragma once

#include <QtCore/QString>
#include <optional>

#include "foundation/Signal.h"

namespace quillmere {

/// Whether the program opens with the session.
enum class LoginItemStatus {
  notRegistered,
  enabled,
  requiresApproval,  ///< asked for, and the desktop has not allowed it, or not yet
  notFound,          ///< this copy cannot: no entry could start it
};

class LoginItemService {
 public:
  virtual ~LoginItemService() = default;
  virtual LoginItemStatus status() const = 0;
  /// Both give the system's description of a problem if there was one.
  virtual std::optional<QString> registerItem() = 0;
  virtual std::optional<QString> unregisterItem() = 0;
  /// Where the person allows it, if there is such a place that can be opened.
  virtual void openSystemSettings() = 0;
  virtual bool hasSystemSettings() const { return true; }

  Signal<> changed;  ///< the status became another by itself: a desktop answered, or the person changed it elsewhere
};

}  // namespace quillmere
