#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace quillmere {

/// Turns SIGTERM, SIGINT and SIGHUP, by which sessions end programs, into a call on the main thread.
class TerminationSignals {
 public:
  /// Before any thread is started, so that none takes a signal in the usual way.
  static void block();
  explicit TerminationSignals(std::function<void()> onTermination);
  ~TerminationSignals();

 private:
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quillmere
