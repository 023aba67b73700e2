#include "reading/PictureMemory.h"

#include <algorithm>

namespace quillmere {

PictureMemory::Share::Share(PictureMemory& memory, int64_t bytes)
    : memory_(memory), bytes_(std::clamp<int64_t>(bytes, 0, memory.limit_)) {
  std::unique_lock lock(memory_.mutex_);
  const int64_t own = memory_.nextTurn_++;
  memory_.changed_.wait(lock, [&] { return memory_.turn_ == own && memory_.taken_ + bytes_ <= memory_.limit_; });
  memory_.taken_ += bytes_;
  ++memory_.turn_;
  memory_.changed_.notify_all();
}

PictureMemory::Share::~Share() {
  {
    const std::lock_guard lock(memory_.mutex_);
    memory_.taken_ -= bytes_;
  }
  memory_.changed_.notify_all();
}

int64_t PictureMemory::taken() const {
  const std::lock_guard lock(mutex_);
  return taken_;
}

int64_t PictureMemory::waiting() const {
  const std::lock_guard lock(mutex_);
  return nextTurn_ - turn_;
}

}  // namespace quillmere
