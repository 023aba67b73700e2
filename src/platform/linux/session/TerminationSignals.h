#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace quillmere {

/// Turns SIGTERM, SIGINT and SIGHUP, by which sessions end programs, into a call on the main thread.
class TerminationSignals {
 public:
  /// From now on none of them ends the process; what comes before there is an object of this class waits for it. A
  /// handler, and no mask: programs that are started from here would inherit that, and nothing could end them.
  static void listen();
  /// After `listen`.
  explicit TerminationSignals(std::function<void()> onTermination);
  ~TerminationSignals();

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quillmere
