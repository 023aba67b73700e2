#pragma once

#include "foundation/Executor.h"
#include "model/Sharing.h"

namespace quillmere {

/// Offers what the test says and notes what was sent.
class FakeSharing final : public Sharing {
 public:
  Task<std::vector<ShareTarget>> targets(QStringList contentTypes) override {
    asked.push_back(contentTypes);
    if (executor) {
      auto looking = executor->background([] { return true; });
      co_await looking;
    }
    co_return offered;
  }
  Task<bool> share(std::vector<PreparedTransfer> transfers, QString targetID) override {
    std::vector<FileURL> files;
    for (const PreparedTransfer& transfer : transfers) files.push_back(transfer.file);
    sent.emplace_back(files, targetID);
    co_return takes;
  }
  bool takes = true;
  Executor* executor = nullptr;  ///< where given, the answer takes its time
  std::vector<ShareTarget> offered;
  std::vector<QStringList> asked;                              ///< the types, at each question
  std::vector<std::pair<std::vector<FileURL>, QString>> sent;  ///< the files of each call, and to whom
};

}  // namespace quillmere
