#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace quillmere {

/// Memory that pictures take while they are decoded, all of them together. Who would be beyond the limit waits until
/// others are through, in the order of coming; so a large picture is not overtaken for ever. Any thread.
class PictureMemory {
 public:
  explicit PictureMemory(int64_t limit) : limit_(limit) {}

  /// A part of it, until it goes. One thread must not hold one and wait for another.
  class [[nodiscard]] Share {
   public:
    /// Waits. What is more than the limit waits to be alone.
    Share(PictureMemory& memory, int64_t bytes);
    ~Share();
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

   private:
    PictureMemory& memory_;
    const int64_t bytes_;
  };

  int64_t taken() const;
  /// How many wait.
  int64_t waiting() const;

 private:
  const int64_t limit_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  int64_t taken_ = 0;
  int64_t nextTurn_ = 0;  ///< numbers are handed out
  int64_t turn_ = 0;      ///< and called
};

}  // namespace quillmere
