#pragma once

#include <cstdint>
#include <cstdlib>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace quillmere {

/// Of 64 pairs of pixels, those that differ by more than `threshold`: bit i is pair i. Reads 64 bytes of each.
inline uint64_t differenceBits(const uint8_t* a, const uint8_t* b, uint8_t threshold) {
  uint64_t bits = 0;
#if defined(__x86_64__)
  const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
  for (int part = 0; part < 4; ++part) {
    const __m128i left = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + 16 * part));
    const __m128i right = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + 16 * part));
    const __m128i difference = _mm_or_si128(_mm_subs_epu8(left, right), _mm_subs_epu8(right, left));
    const __m128i isWithin = _mm_cmpeq_epi8(_mm_subs_epu8(difference, limit), _mm_setzero_si128());
    bits |= static_cast<uint64_t>(~_mm_movemask_epi8(isWithin) & 0xffff) << (16 * part);
  }
#else
  for (int i = 0; i < 64; ++i) bits |= static_cast<uint64_t>(std::abs(a[i] - b[i]) > threshold) << i;
#endif
  return bits;
}

}  // namespace quillmere
