#pragma once

#include <cstdint>

#include "platform/linux/passing/Protections.h"

namespace quillmere {

/// How a process gives up all that it does not need, for good: before it has seen a byte of a stranger's. What comes
/// out of a decoder's hole then has no files, no network and no other process before it.
namespace Confinement {

/// With the first line of the program: limits, no more rights than now, nobody looks into its memory, its end with the
/// program that started it, and namespaces. Gives the protections that are missing. Only while the process has one
/// thread.
uint32_t begin();

/// When everything that stands in files is loaded; adds to the protections that are missing. False where even the
/// filter of system calls is, without which nothing may be read.
bool close(uint32_t& missing);

/// From now on as many seconds of computing; who takes more is ended by the kernel.
void allowSeconds(unsigned seconds);

/// As long as it is there, so many bytes of memory of its own beside what the process has now; who wants more gets
/// none. What a picture says that it takes is one thing, and what a decoder takes for it another.
class MemoryAllowance {
 public:
  explicit MemoryAllowance(int64_t bytes);
  ~MemoryAllowance();
  MemoryAllowance(const MemoryAllowance&) = delete;
  MemoryAllowance& operator=(const MemoryAllowance&) = delete;
};

}  // namespace Confinement
}  // namespace quillmere
