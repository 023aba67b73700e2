#include "platform/linux/reading/ReaderLane.h"

#include <utility>

namespace quillmere {

ReaderLane::ReaderLane(std::string program, const char* task, int most, ReaderProcess::Patience patience)
    : program_(std::move(program)), task_(task), most_(static_cast<size_t>(most)), patience_(patience) {}

std::shared_ptr<ReaderProcess> ReaderLane::take() {
  std::unique_lock lock(mutex_);
  bool canStart = true;
  while (true) {
    free_.wait(lock, [&] {
      return isEnded_ || !idle_.empty() || (canStart ? busy_.size() + starting_ < most_ : busy_.empty());
    });
    if (isEnded_) return nullptr;
    if (!idle_.empty()) {
      busy_.push_back(std::move(idle_.back()));
      idle_.pop_back();
      return busy_.back();
    }
    if (!canStart) return nullptr;
    if (const auto process = start(lock)) return process;
    // Where there are no more, those that run have to do.
    canStart = false;
  }
}

std::shared_ptr<ReaderProcess> ReaderLane::start(std::unique_lock<std::mutex>& lock) {
  ++starting_;
  lock.unlock();
  std::shared_ptr<ReaderProcess> process = ReaderProcess::start(program_, task_, patience_, isEnded_);
  lock.lock();
  --starting_;
  hasFailedToStart_ = !process;
  if (isEnded_) process = nullptr;
  if (process) {
    missing_ |= process->missingProtections();
    busy_.push_back(process);
  }
  free_.notify_all();
  return process;
}

void ReaderLane::giveBack(const std::shared_ptr<ReaderProcess>& process) {
  const std::lock_guard lock(mutex_);
  std::erase(busy_, process);
  if (!isEnded_) idle_.push_back(process);
  free_.notify_all();
}

void ReaderLane::drop(const std::shared_ptr<ReaderProcess>& process) {
  process->kill();
  const std::lock_guard lock(mutex_);
  std::erase(busy_, process);
  free_.notify_all();
}

void ReaderLane::endIdle() {
  std::vector<std::shared_ptr<ReaderProcess>> ended;
  const std::lock_guard lock(mutex_);
  ended.swap(idle_);
}

void ReaderLane::end() {
  endIdle();
  const std::lock_guard lock(mutex_);
  isEnded_ = true;
  for (const auto& process : busy_) process->kill();
  free_.notify_all();
}

bool ReaderLane::isWithoutReader() const {
  const std::lock_guard lock(mutex_);
  return hasFailedToStart_ && !isEnded_ && idle_.empty() && busy_.empty();
}

size_t ReaderLane::running() const {
  const std::lock_guard lock(mutex_);
  return idle_.size() + busy_.size();
}

uint32_t ReaderLane::missingProtections() const {
  const std::lock_guard lock(mutex_);
  return missing_;
}

}  // namespace quillmere
