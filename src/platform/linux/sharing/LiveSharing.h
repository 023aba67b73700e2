#pragma once

#include <QtDBus/QDBusConnection>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "model/Sharing.h"
#include "platform/linux/sharing/RecentTargets.h"

namespace quillmere {

/// E-mail through the desktop's portal, or else its own mail command, and the programs that open such pictures.
class LiveSharing final : public Sharing {
 public:
  /// Of the bus of the session, on which the portal is.
  LiveSharing(Executor& executor, UserDefaults& defaults, const QDBusConnection& bus)
      : executor_(executor), recent_(defaults), bus_(bus) {}
  Task<std::vector<ShareTarget>> targets(QStringList contentTypes) override;
  Task<bool> share(std::vector<PreparedTransfer> transfers, QString targetID) override;

 private:
  Executor& executor_;
  RecentTargets recent_;
  QDBusConnection bus_;
  Lifetime lifetime_;
};

}  // namespace quillmere
