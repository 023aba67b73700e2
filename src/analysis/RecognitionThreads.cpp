#include "analysis/RecognitionThreads.h"

#include <algorithm>
#include <utility>

namespace quillmere {

RecognitionThreads::RecognitionThreads(std::chrono::nanoseconds warm) : warm_(warm) {}

RecognitionThreads::~RecognitionThreads() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
    waiting_.clear();
  }
  changed_.notify_all();
  for (Place& place : places_) {
    if (place.thread.joinable()) place.thread.join();
  }
}

void RecognitionThreads::run(Work work) {
  const std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(work));
  if (static_cast<size_t>(idle_) >= waiting_.size()) {
    changed_.notify_one();
    return;
  }
  const auto free = std::find_if(places_.begin(), places_.end(), [](const Place& place) { return !place.isRunning; });
  if (free == places_.end()) return;
  if (free->thread.joinable()) free->thread.join();  // it needs the lock no more
  free->isRunning = true;
  free->thread = std::thread([this, place = static_cast<size_t>(free - places_.begin())] { this->work(place); });
}

int RecognitionThreads::places() const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(
      std::count_if(places_.begin(), places_.end(), [](const Place& place) { return place.isRunning; }));
}

void RecognitionThreads::work(size_t place) {
  std::unique_lock lock(mutex_);
  while (true) {
    ++idle_;
    changed_.wait_for(lock, warm_, [this] { return isEnding_ || !waiting_.empty(); });
    --idle_;
    if (isEnding_ || waiting_.empty()) break;
    const Work next = std::exchange(waiting_.front(), nullptr);
    waiting_.pop_front();
    lock.unlock();
    next();
    lock.lock();
  }
  // From here on the place may be taken; whoever takes it waits for the thread to be gone.
  places_[place].isRunning = false;
}

}  // namespace quillmere
