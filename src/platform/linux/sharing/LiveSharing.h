#pragma once

#include "foundation/Executor.h"
#include "model/Sharing.h"

namespace quillmere {

/// E-mail through the desktop's portal, or else its own mail command, and the applications that open such pictures.
class LiveSharing final : public Sharing {
 public:
  explicit LiveSharing(Executor& executor) : executor_(executor) {}
  Task<std::vector<ShareTarget>> targets(QString contentType) override;
  Task<bool> share(PreparedTransfer transfer, QString targetID) override;

 private:
  Executor& executor_;
};

}  // namespace quillmere
