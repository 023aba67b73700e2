#pragma once

#include <coroutine>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"
#include "foundation/Weak.h"
#include "model/AsyncGate.h"
#include "records/UUID.h"

namespace quillmere {

/// What an operation on files has for itself while it is under way.
struct FileClaim {
  /// A file that comes into being under this name, or under this name with a number after it.
  struct NewName {
    FileURL folder;
    std::string stem;
  };
  UUIDSet ids;               ///< records whose files it works on
  std::set<FileURL> places;  ///< of files
  std::optional<NewName> newName = std::nullopt;
};

/// Works on files off the main thread: one operation after another for one record and for one place, a few of them at a
/// time. Main thread.
class FileWorker {
 public:
  /// `ended` is called, in a turn of the loop of its own, after each operation.
  FileWorker(Executor& executor, std::function<void()> ended);
  FileWorker(const FileWorker&) = delete;
  FileWorker& operator=(const FileWorker&) = delete;

  class Claimed;
  /// An operation has what it claimed until the last of these goes.
  using Hold = std::shared_ptr<const Claimed>;
  class Entry;
  /// Awaited, gives the hold when nobody before has any of it. First come, first served.
  Entry enter(FileClaim claim);

  /// Awaited, runs `work` on another thread and gives what it returned. Whoever calls it has a hold on the files.
  template <typename Result>
  Task<Result> run(std::function<Result()> work) {
    return runOne<Result>(lifetime_.weak(this), std::move(work));
  }

  /// Whether an operation has the record's file, or waits for it.
  bool isBusy(const UUID& id) const;
  bool isBusy() const { return !claims_.empty(); }
  /// Whether an operation works on a file at this place, or may put one there.
  bool concerns(const FileURL& url) const;

 private:
  struct Waiting {
    std::shared_ptr<Continuation> continuation;
    Hold* hold = nullptr;
  };
  struct Claim {
    FileClaim wanted;
    std::optional<Waiting> waiting;  ///< none: it has what it wanted
  };
  using Claims = std::list<Claim>;  ///< in the order in which they came

  template <typename Result>
  static Task<Result> runOne(Weak<FileWorker> self, std::function<Result()> work) {
    Executor& executor = self->executor_;
    auto entering = self->gate_.enter();
    const bool isIn = co_await entering;
    auto working = executor.background(std::move(work));
    Result result = co_await working;
    if (isIn && self) self->gate_.leave();
    co_return result;
  }
  bool isFree(Claims::const_iterator claim) const;
  void release(Claims::iterator claim);
  void letIn();

  static constexpr int kMostAtOnce = 2;

  Executor& executor_;
  std::function<void()> ended_;
  AsyncGate gate_{kMostAtOnce};
  Claims claims_;  ///< those that wait go with this, and never begin
  Lifetime lifetime_;
};

class FileWorker::Claimed {
 public:
  Claimed(Weak<FileWorker> worker, Claims::iterator claim) : worker_(std::move(worker)), claim_(claim) {}
  Claimed(const Claimed&) = delete;
  Claimed& operator=(const Claimed&) = delete;
  ~Claimed() {
    if (worker_) worker_->release(claim_);
  }

 private:
  Weak<FileWorker> worker_;
  Claims::iterator claim_;
};

class FileWorker::Entry {
 public:
  Entry(FileWorker& worker, Claims::iterator claim) : worker_(worker), claim_(claim) {}
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  bool await_ready() {
    if (!worker_.isFree(claim_)) return false;
    hold_ = std::make_shared<Claimed>(worker_.lifetime_.weak(&worker_), claim_);
    return true;
  }
  void await_suspend(std::coroutine_handle<> task) {
    claim_->waiting = Waiting{std::make_shared<Continuation>(task), &hold_};
  }
  Hold await_resume() { return std::move(hold_); }

 private:
  FileWorker& worker_;
  Claims::iterator claim_;
  Hold hold_;
};

}  // namespace quillmere
