#include "platform/linux/windows/SwayWindowWatch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <utility>

namespace quillmere {

SwayWindowWatch::SwayWindowWatch(std::function<Date()> now, SwayConnection connection)
    : now_(std::move(now)), connection_(std::move(connection)), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wake_) thread_ = std::thread([this] { run(); });
}

SwayWindowWatch::~SwayWindowWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  connection_.hangUp();
  lookAgain();
  thread_.join();
}

std::vector<WindowStack> SwayWindowWatch::states() const {
  const std::lock_guard lock(mutex_);
  return history_.states(now_());
}

void SwayWindowWatch::lookAgain() {
  const uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(wake_.number(), &one, sizeof one);
}

void SwayWindowWatch::run() {
  confirmedAt_ = now_();
  bool goesOn = connection_.subscribe() && look(confirmedAt_);
  while (goesOn) {
    const auto due =
        lastChange_ ? std::optional(std::min(*lastChange_ + kQuiet, *firstChange_ + kLongest)) : std::nullopt;
    if (due && *due <= Clock::now()) {
      firstChange_.reset();
      lastChange_.reset();
      goesOn = look(changedAt_);
    } else {
      goesOn = wait(due);
    }
  }
  // What nobody follows any more is not known.
  const std::lock_guard lock(mutex_);
  history_ = {};
}

bool SwayWindowWatch::look(Date since) {
  const Date asked = now_();
  auto state = connection_.read();
  if (!state) return false;
  state->since = since;
  confirmedAt_ = asked;
  const std::lock_guard lock(mutex_);
  history_.add(std::move(*state));
  return !isEnding_;
}

bool SwayWindowWatch::wait(std::optional<Clock::time_point> until) {
  std::array<pollfd, 2> files{{{connection_.descriptor(), POLLIN, 0}, {wake_.number(), POLLIN, 0}}};
  int longest = -1;
  if (until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now());
    longest = std::max(0, static_cast<int>(left.count()));
  }
  ::poll(files.data(), files.size(), longest);
  if (files[0].revents != 0) {
    if (!connection_.hear()) return false;
    lastChange_ = Clock::now();
    changedAt_ = now_();
    if (!firstChange_) firstChange_ = lastChange_;
  }
  if (files[1].revents == 0) return true;
  uint64_t asked = 0;
  [[maybe_unused]] const auto taken = ::read(wake_.number(), &asked, sizeof asked);
  // What has changed unheard has done so since the last look, most likely long before somebody asked.
  return look(confirmedAt_);
}

}  // namespace quillmere
