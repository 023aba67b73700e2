#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "png/PngChunks.h"

/// The chunks with their checksums made right, which hardly any random change leaves right.
inline std::string repairedPng(std::string_view bytes) {
  std::string result(quillmere::kPngSignature);
  quillmere::PngChunks chunks(bytes);
  while (const auto chunk = chunks.next()) result += quillmere::encodedPngChunk(chunk->type, chunk->data);
  return result;
}

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t capacity);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t capacity, unsigned seed) {
  size = LLVMFuzzerMutate(data, size, capacity);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (seed % 8 == 0 || !bytes.starts_with(quillmere::kPngSignature)) return size;
  const std::string whole = repairedPng(bytes);
  std::copy(whole.begin(), whole.end(), data);
  return whole.size();
}

/// The library forgets fifty bytes of a colour profile whose numbers it does not know.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the leak checker asks by this name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libheif.so\n";
}
