#include "platform/linux/windows/X11WindowWatch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/windows/X11WindowReader.h"

namespace quillmere {

X11WindowWatch::X11WindowWatch(std::function<Date()> now, uint32_t ownBase)
    : now_(std::move(now)), ownBase_(ownBase), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  int screen = 0;
  connection_.reset(xcb_connect(nullptr, &screen));
  if (xcb_connection_has_error(connection_.get()) || !wake_) return;
  thread_ = std::thread([this, screen] { run(screen); });
}

X11WindowWatch::~X11WindowWatch() {
  if (!thread_.joinable()) return;
  const uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(wake_.number(), &one, sizeof one);
  // One that waits for the server is let go with it.
  ::shutdown(xcb_get_file_descriptor(connection_.get()), SHUT_RDWR);
  thread_.join();
}

uint32_t X11WindowWatch::baseOfApplication() {
  const auto display = X11Display::ofApplication();
  return display ? xcb_get_setup(display->connection())->resource_id_base : 0;
}

std::vector<WindowStack> X11WindowWatch::states() const {
  const std::lock_guard lock(mutex_);
  return history_.states(now_());
}

void X11WindowWatch::run(int screen) {
  X11WindowReader reader(connection_.get(), screen, ownBase_);
  changedAt_ = now_();
  firstChange_ = lastChange_ = Clock::now() - kQuiet;
  isReadingDue_ = true;
  while (!xcb_connection_has_error(connection_.get())) {
    hearAll(reader);
    std::optional<Clock::time_point> due;
    if (isReadingDue_ || isMoved_) due = std::min(lastChange_ + kQuiet, firstChange_ + kLongest);
    if (due && *due <= Clock::now()) {
      if (std::exchange(isReadingDue_, false)) shown_ = reader.read();
      isMoved_ = false;
      // What a server said while it went is nothing to keep.
      if (!xcb_connection_has_error(connection_.get())) note(shown_, changedAt_);
      continue;
    }
    xcb_flush(connection_.get());
    if (!waitForEvents(due)) return;
  }
}

void X11WindowWatch::hearAll(X11WindowReader& reader) {
  while (const auto event = X11Display::owned(xcb_poll_for_event(connection_.get()))) {
    const auto change = reader.hear(*event, shown_);
    if (change == X11WindowReader::Change::none) continue;
    lastChange_ = Clock::now();
    changedAt_ = now_();
    if (!isReadingDue_ && !isMoved_) firstChange_ = lastChange_;
    (change == X11WindowReader::Change::moved ? isMoved_ : isReadingDue_) = true;
  }
}

void X11WindowWatch::note(const WindowStack& shown, Date since) {
  const std::lock_guard lock(mutex_);
  WindowStack state = shown;
  state.since = since;
  history_.add(std::move(state));
}

/// False when it is to end.
bool X11WindowWatch::waitForEvents(std::optional<Clock::time_point> until) const {
  std::array<pollfd, 2> files{{{xcb_get_file_descriptor(connection_.get()), POLLIN, 0}, {wake_.number(), POLLIN, 0}}};
  int wait = -1;
  if (until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now());
    wait = std::max(0, static_cast<int>(left.count()));
  }
  ::poll(files.data(), files.size(), wait);
  return files[1].revents == 0;
}

}  // namespace quillmere
