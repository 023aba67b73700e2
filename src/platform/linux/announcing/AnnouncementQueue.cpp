#include "platform/linux/announcing/AnnouncementQueue.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr size_t kMostWaiting = 8;
constexpr Duration kPause = std::chrono::milliseconds(500);
constexpr Duration kLetter = std::chrono::milliseconds(70);

}  // namespace

AnnouncementQueue::AnnouncementQueue(Executor& executor, std::function<void(const QString&)> say)
    : executor_(executor), say_(std::move(say)) {}

AnnouncementQueue::~AnnouncementQueue() {
  if (speaking_) executor_.cancelDelay(*speaking_);
}

Duration AnnouncementQueue::timeToSay(const QString& text) {
  return kPause + kLetter * text.size();
}

void AnnouncementQueue::add(const QString& text, AnnouncementPriority priority) {
  const Announcement announcement{text, priority};
  if (first_ == announcement || std::find(waiting_.begin(), waiting_.end(), announcement) != waiting_.end()) return;
  if (!speaking_) {
    first_ = announcement;
    waitAndThen(kSettling, &AnnouncementQueue::sayFirst);
    return;
  }
  const auto isLow = [](const Announcement& other) { return other.priority == AnnouncementPriority::low; };
  const auto firstLow = std::find_if(waiting_.begin(), waiting_.end(), isLow);
  waiting_.insert(isLow(announcement) ? waiting_.end() : firstLow, announcement);
  if (waiting_.size() > kMostWaiting) {
    const auto oldest = std::find_if(waiting_.begin(), waiting_.end(), isLow);
    waiting_.erase(oldest == waiting_.end() ? waiting_.begin() : oldest);
  }
}

void AnnouncementQueue::waitAndThen(Duration pause, void (AnnouncementQueue::*next)()) {
  speaking_ = executor_.startDelay(pause, [this, next](bool elapsed) {
    if (elapsed) (this->*next)();
  });
}

void AnnouncementQueue::sayFirst() {
  say(std::exchange(first_, std::nullopt)->text);
}

void AnnouncementQueue::sayNext() {
  speaking_.reset();
  if (waiting_.empty()) return;
  const QString text = std::move(waiting_.front().text);
  waiting_.pop_front();
  say(text);
}

void AnnouncementQueue::say(const QString& text) {
  waitAndThen(timeToSay(text), &AnnouncementQueue::sayNext);
  say_(text);
}

}  // namespace quillmere
