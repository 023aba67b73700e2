#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quillmere {

/// Threads of their own for the recognitions, which take seconds and may hold up nothing else. One begins with the
/// first work that finds the others busy, and ends when it has had nothing to do for a while.
class RecognitionThreads {
 public:
  using Work = std::function<void()>;
  static constexpr int kPlaces = 2;
  static constexpr std::chrono::nanoseconds kWarm = std::chrono::minutes(2);

  explicit RecognitionThreads(std::chrono::nanoseconds warm = kWarm);
  /// Waits for what has begun; what has not is dropped.
  ~RecognitionThreads();

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
