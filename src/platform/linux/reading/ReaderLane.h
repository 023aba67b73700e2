#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/reading/ReaderProcess.h"

namespace quillmere {

/// Readers of one kind. One is started when all others are busy, up to a number. Any thread.
class ReaderLane {
 public:
  /// `task` is what its readers are told to be.
  ReaderLane(std::string program, const char* task, int most, ReaderProcess::Patience patience);

  /// A reader for one request, waited for. Null where none runs nor can be started, and once it has ended.
  std::shared_ptr<ReaderProcess> take();
  /// One that answered; another takes it.
  void giveBack(const std::shared_ptr<ReaderProcess>& process);
  /// One that is of no more use.
  void drop(const std::shared_ptr<ReaderProcess>& process);

  /// Those that have nothing to do.
  void endIdle();
  /// All, also those that are busy; no other is started any more.
  void end();

  size_t running() const;
  /// What the kernel cannot give them, as far as any has been started.
  uint32_t missingProtections() const;
  /// Whether the last one that was to be started did not come, and none runs.
  bool isWithoutReader() const;

 private:
  /// Waited for without the lock.
  std::shared_ptr<ReaderProcess> start(std::unique_lock<std::mutex>& lock);

  const std::string program_;
  const char* task_;
  const size_t most_;
  const ReaderProcess::Patience patience_;
  mutable std::mutex mutex_;
  std::condition_variable free_;
  std::vector<std::shared_ptr<ReaderProcess>> idle_;
  std::vector<std::shared_ptr<ReaderProcess>> busy_;
  size_t starting_ = 0;
  uint32_t missing_ = 0;
  bool hasFailedToStart_ = false;
  std::atomic<bool> isEnded_ = false;
};

}  // namespace quillmere
