#pragma once

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "model/Sharing.h"
#include "platform/linux/sharing/RecentTargets.h"

namespace quillmere {

/// E-mail through the desktop's portal, or else its own mail command, and the programs that open such pictures.
class LiveSharing final : public Sharing {
 public:
  LiveSharing(Executor& executor, UserDefaults& defaults) : executor_(executor), recent_(defaults) {}
  Task<std::vector<ShareTarget>> targets(QString contentType) override;
  Task<bool> share(PreparedTransfer transfer, QString targetID) override;

 private:
  Executor& executor_;
  RecentTargets recent_;
  Lifetime lifetime_;
};

}  // namespace quillmere
