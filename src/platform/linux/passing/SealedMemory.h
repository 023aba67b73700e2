#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/passing/Descriptor.h"

namespace quillmere {

/// Memory that nobody can change any more, nor make shorter or longer: what one process made and another one reads.
class SealedMemory {
 public:
  /// One after the other. None where there is not so much memory.
  static std::optional<Descriptor> of(const std::vector<std::string_view>& parts);
  /// The first bytes of what was made in `memory`, which must not be mapped to be written to any more, and `parts`
  /// behind them.
  static std::optional<Descriptor> sealed(Descriptor memory, uint64_t bytes,
                                          const std::vector<std::string_view>& parts);

  /// What another process made. None unless it is sealed in every way and has exactly `bytes`, one at least.
  static std::shared_ptr<const SealedMemory> mapped(const Descriptor& memory, uint64_t bytes);

  SealedMemory(const SealedMemory&) = delete;
  SealedMemory& operator=(const SealedMemory&) = delete;
  ~SealedMemory();

  std::string_view bytes() const { return {data_, size_}; }

 private:
  SealedMemory(const char* data, size_t size) : data_(data), size_(size) {}
  const char* data_;
  size_t size_;
};

}  // namespace quillmere
