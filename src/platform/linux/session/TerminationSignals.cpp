#include "platform/linux/session/TerminationSignals.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <QtCore/QSocketNotifier>
#include <csignal>
#include <utility>

namespace quillmere {

namespace {

sigset_t terminationSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGHUP);
  return signals;
}

}  // namespace

void TerminationSignals::block() {
  const sigset_t signals = terminationSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(std::function<void()> onTermination) {
  const sigset_t signals = terminationSignals();
  descriptor_ = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this, onTermination = std::move(onTermination)] {
                     signalfd_siginfo info{};
                     while (::read(descriptor_, &info, sizeof info) > 0) {
                     }
                     onTermination();
                   });
}

TerminationSignals::~TerminationSignals() {
  notifier_.reset();
  ::close(descriptor_);
}

}  // namespace quillmere
