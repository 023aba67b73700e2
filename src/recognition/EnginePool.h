#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "recognition/TextRecognizer.h"

namespace quillmere {

/// Recognisers on threads of their own, which give way to everything else that wants the processor. A thread begins
/// with the first work that finds the others busy, and ends with its engine when it has had nothing to do for a while.
class EnginePool {
 public:
  using Work = std::function<void(TextRecognizer&)>;
  static constexpr int kPlaces = 2;
  static constexpr std::chrono::nanoseconds kWarm = std::chrono::minutes(2);

  explicit EnginePool(std::chrono::nanoseconds warm = kWarm);
  /// Waits for what has begun; what has not is dropped.
  ~EnginePool();

  /// Any thread. Runs in the order of the calls, on one of the pool's threads.
  void run(Work work);

  /// How many threads there are.
  int places() const;

 private:
  void work(size_t place);

  struct Place {
    std::thread thread;
    bool isRunning = false;
  };
  const std::chrono::nanoseconds warm_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Work> waiting_;
  std::vector<Place> places_{kPlaces};
  int idle_ = 0;  ///< threads that wait for work
  bool isEnding_ = false;
};

}  // namespace quillmere
