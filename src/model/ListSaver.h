#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "records/ScreenshotList.h"
#include "records/ScreenshotListWriter.h"

namespace quillmere {

/// Whether the list of a moment is on the disk.
enum class SaveOutcome {
  saved,
  failed,   ///< it was tried, and is tried again
  waiting,  ///< the disk has not answered yet
};

/// Brings the list to the disk in the background: one save at a time, each of the list as it is when the save begins.
/// What is asked for while one runs is one more. A save that fails is tried again after 1, 2, 4 … 32 seconds. Main
/// thread.
class ListSaver {
 public:
  struct Services {
    Executor* executor = nullptr;   ///< for time
    Executor* disk = nullptr;       ///< waits for the disk
    std::function<void()> prepare;  ///< called by the disk's thread before each save
    FileURL file;
    /// Since when something has been on its way into the list; its file bears that date then, by which a start after a
    /// kill hears what is not in it.
    std::function<std::optional<Date>()> awaitedSince = [] { return std::nullopt; };
  };
  /// All of them outlive this, and the services its last save.
  ListSaver(Services services, const ScreenshotList& items);
  ~ListSaver();
  /// What was asked for and has not begun is saved all the same, and nobody hears of it: the end of the program waits
  /// for the disk.
  void saveLast();

  /// At once, or right after the save that runs.
  void save();
  /// After `pause`, counted from the first call, so that a steady stream is saved too.
  void saveWithin(Duration pause);
  /// At once for a few, which may be all; a stream saves once in `pause`.
  void saveInStream(Duration pause);

  /// Not all is on the disk that was asked for.
  bool isPending() const { return isRunning_ || pause_; }
  /// False after a save that failed, until one succeeds.
  bool isSaved() const { return failures_ == 0; }
  /// The disk has not answered for longer than disks take.
  bool isSlow() const { return isSlow_; }

  class Wait;
  /// Awaited, tells what became of all that was asked for until now; `waiting` only when `longest` has passed first.
  Wait whenSaved(std::optional<Duration> longest = std::nullopt);

  /// A save has ended, which somebody had asked for or which only tried again.
  enum class Cause { asked, retry };
  std::function<void(bool isSaved, Cause cause)> onEnd = [](bool, Cause) {};
  /// `isPending` or `isSlow` has changed.
  std::function<void()> onPendingChanged = [] {};

 private:
  struct Job {
    ScreenshotList::Snapshot records;
    bool isSaved = false;
  };
  struct Waiter {
    uint64_t request;
    std::shared_ptr<Continuation> continuation;
    SaveOutcome* outcome;
    std::optional<Executor::DelayID> limit;
  };
  std::shared_ptr<Job> newJob() const;
  void write(const std::shared_ptr<Job>& job, std::function<void()> done);
  void begin();
  void end(bool isSaved);
  void pauseFor(Duration pause, Cause cause);
  void cancelPause();
  void resumeWaiters();
  void tell();
  bool isSettled(uint64_t request) const { return request <= settled_; }

  Services services_;
  const ScreenshotList& items_;
  const std::shared_ptr<ScreenshotListWriter> writer_ = std::make_shared<ScreenshotListWriter>();
  uint64_t requested_ = 0;  ///< counts what was asked for
  uint64_t begun_ = 0;      ///< what the last save has in it
  uint64_t settled_ = 0;    ///< what saves that ended had in them
  bool isRunning_ = false;
  bool isWanted_ = false;  ///< one more, after the one that runs
  Cause nextCause_ = Cause::retry;
  Cause cause_ = Cause::retry;  ///< of the save that runs
  int failures_ = 0;            ///< since one succeeded
  std::optional<Executor::DelayID> pause_;
  std::optional<Executor::DelayID> patience_;
  bool isSlow_ = false;
  Instant streamTime_;  ///< until when the stream has used up its saves
  std::pair<bool, bool> told_{false, false};
  std::vector<std::shared_ptr<Waiter>> waiters_;
  Lifetime lifetime_;
};

class ListSaver::Wait {
 public:
  Wait(ListSaver& saver, uint64_t request, std::optional<Duration> longest)
      : saver_(saver), request_(request), longest_(longest) {}
  Wait(const Wait&) = delete;
  Wait& operator=(const Wait&) = delete;
  bool await_ready() {
    if (!saver_.isSettled(request_)) return false;
    outcome_ = saver_.isSaved() ? SaveOutcome::saved : SaveOutcome::failed;
    return true;
  }
  void await_suspend(std::coroutine_handle<> task);
  SaveOutcome await_resume() const { return outcome_; }

 private:
  ListSaver& saver_;
  uint64_t request_;
  std::optional<Duration> longest_;
  SaveOutcome outcome_ = SaveOutcome::waiting;
};

inline ListSaver::Wait ListSaver::whenSaved(std::optional<Duration> longest) {
  return {*this, requested_, longest};
}

}  // namespace quillmere
