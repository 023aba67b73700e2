#pragma once

#include "foundation/Executor.h"
#include "model/Sharing.h"

namespace quillmere {

/// Offers what the test says and notes what was sent.
class FakeSharing final : public Sharing {
 public:
  Task<std::vector<ShareTarget>> targets(QString contentType) override {
    asked.push_back(contentType);
    if (executor) {
      auto looking = executor->background([] { return true; });
      co_await looking;
    }
    co_return offered;
  }
  Task<bool> share(PreparedTransfer transfer, QString targetID) override {
    sent.emplace_back(transfer.file, targetID);
    co_return takes;
  }
  bool takes = true;
  Executor* executor = nullptr;  ///< where given, the answer takes its time
  std::vector<ShareTarget> offered;
  std::vector<QString> asked;
  std::vector<std::pair<FileURL, QString>> sent;
};

}  // namespace quillmere
