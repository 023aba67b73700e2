#include "platform/linux/session/TerminationSignals.h"

#include <sys/eventfd.h>
#include <unistd.h>
#include <QtCore/QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

namespace quillmere {

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

/// Of the process, as its signals are. Set before a handler can run.
int wakeUp = -1;

/// In the middle of anything: it may only write.
void note(int) {
  const int kept = errno;
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(wakeUp, &one, sizeof one);
  errno = kept;
}

}  // namespace

void TerminationSignals::listen() {
  if (wakeUp < 0) wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  for (const int signal : kSignals) {
    struct sigaction former {};
    ::sigaction(signal, nullptr, &former);
    if (former.sa_handler == SIG_IGN) continue;  // whoever started the program wants it to outlive the terminal
    struct sigaction handling {};
    handling.sa_handler = &note;
    handling.sa_flags = SA_RESTART;
    ::sigaction(signal, &handling, nullptr);
  }
}

TerminationSignals::TerminationSignals(std::function<void()> onTermination)
    : notifier_(std::make_unique<QSocketNotifier>(wakeUp, QSocketNotifier::Read)) {
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [onTermination = std::move(onTermination)] {
                     uint64_t count = 0;
                     if (::read(wakeUp, &count, sizeof count) == sizeof count) onTermination();
                   });
}

TerminationSignals::~TerminationSignals() = default;

}  // namespace quillmere
