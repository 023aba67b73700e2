#include "model/ListSaver.h"

#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

constexpr int kMostDoublings = 5;
/// A disk that is merely busy has answered by then.
constexpr Duration kPatience = std::chrono::seconds(2);
/// Of a stream, before it saves once in its pause.
constexpr int kMostAtOnce = 8;

}  // namespace

ListSaver::ListSaver(Services services, const ScreenshotList& items) : services_(std::move(services)), items_(items) {}

ListSaver::~ListSaver() {
  cancelPause();
  if (patience_) services_.executor->cancelDelay(*patience_);
  for (const auto& waiter : waiters_) {
    if (waiter->limit) services_.executor->cancelDelay(*waiter->limit);
  }
}

// --- What is asked for ---

void ListSaver::save() {
  ++requested_;
  nextCause_ = Cause::asked;
  cancelPause();
  isWanted_ = true;
  if (!isRunning_) begin();
  tell();
}

void ListSaver::saveWithin(Duration pause) {
  ++requested_;
  if (!isWanted_ && !pause_) pauseFor(pause, Cause::asked);
  tell();
}

void ListSaver::saveInStream(Duration pause) {
  // Part of one that comes anyway.
  if (isWanted_ || (pause_ && isSaved())) {
    ++requested_;
    return;
  }
  const Instant now = services_.executor->instant();
  const Duration wait = streamTime_ - now - (kMostAtOnce - 1) * pause;
  streamTime_ = std::max(streamTime_, now) + pause;
  if (wait > Duration::zero()) return saveWithin(wait);
  save();
}

// --- One save ---

void ListSaver::begin() {
  isRunning_ = true;
  isWanted_ = false;
  begun_ = requested_;
  cause_ = std::exchange(nextCause_, Cause::retry);
  patience_ = services_.executor->startDelay(kPatience, [this](bool elapsed) {
    patience_.reset();
    if (!elapsed) return;
    isSlow_ = true;
    tell();
  });
  const auto job = newJob();
  write(job, [job, writer = writer_, self = lifetime_.weak(this)] {
    job->records = {};
    writer->forgetPrevious();
    if (self) self->end(job->isSaved);
  });
}

std::shared_ptr<ListSaver::Job> ListSaver::newJob() const {
  const auto job = std::make_shared<Job>(Job{items_.snapshot()});
  if (const auto since = services_.awaitedSince()) job->records.dateBack(*since);
  return job;
}

void ListSaver::write(const std::shared_ptr<Job>& job, std::function<void()> done) {
  services_.disk->runInBackground(
      [job, writer = writer_, prepare = services_.prepare, file = services_.file] {
        // After a power cut the list may be older than the files, never newer: a file that the list tells gone would
        // come back.
        prepare();
        job->isSaved = writer->save(job->records, file);
      },
      std::move(done));
}

void ListSaver::saveLast() {
  if (isWanted_ || pause_) write(newJob(), [] {});
  cancelPause();
  isWanted_ = false;
}

void ListSaver::end(bool isSaved) {
  isRunning_ = false;
  isSlow_ = false;
  if (patience_) services_.executor->cancelDelay(*std::exchange(patience_, std::nullopt));
  settled_ = begun_;
  if (isSaved) {
    failures_ = 0;
  } else {
    const Duration pause = std::chrono::seconds(1 << std::min(failures_++, kMostDoublings));
    if (!isWanted_ && !pause_) pauseFor(pause, Cause::retry);
  }
  onEnd(isSaved, cause_);
  if (isWanted_ && !isRunning_) begin();
  tell();
  resumeWaiters();
}

void ListSaver::pauseFor(Duration pause, Cause cause) {
  pause_ = services_.executor->startDelay(pause, [this, cause](bool elapsed) {
    pause_.reset();
    if (!elapsed) return;
    if (cause == Cause::asked) nextCause_ = Cause::asked;
    isWanted_ = true;
    if (!isRunning_) begin();
    tell();
  });
}

void ListSaver::cancelPause() {
  if (pause_) services_.executor->cancelDelay(*std::exchange(pause_, std::nullopt));
}

void ListSaver::tell() {
  const std::pair now{isPending(), isSlow_};
  if (std::exchange(told_, now) != now) onPendingChanged();
}

// --- Waiting ---

void ListSaver::Wait::await_suspend(std::coroutine_handle<> task) {
  const auto waiter =
      std::make_shared<Waiter>(Waiter{request_, std::make_shared<Continuation>(task), &outcome_, std::nullopt});
  saver_.waiters_.push_back(waiter);
  if (!longest_) return;
  waiter->limit =
      saver_.services_.executor->startDelay(*longest_, [&saver = saver_, weak = std::weak_ptr(waiter)](bool) {
        const auto late = weak.lock();
        if (!late) return;
        late->limit.reset();
        std::erase(saver.waiters_, late);
        late->continuation->resume();
      });
}

void ListSaver::resumeWaiters() {
  const auto first = std::stable_partition(waiters_.begin(), waiters_.end(),
                                           [&](const auto& waiter) { return !isSettled(waiter->request); });
  const std::vector<std::shared_ptr<Waiter>> settled(first, waiters_.end());
  waiters_.erase(first, waiters_.end());
  const auto outcome = isSaved() ? SaveOutcome::saved : SaveOutcome::failed;
  for (const auto& waiter : settled) {
    if (waiter->limit) services_.executor->cancelDelay(*std::exchange(waiter->limit, std::nullopt));
  }
  for (const auto& waiter : settled) {
    *waiter->outcome = outcome;
    waiter->continuation->resume();
  }
}

}  // namespace quillmere
