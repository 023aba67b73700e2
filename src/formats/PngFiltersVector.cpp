#include "formats/PngFiltersVector.h"

#if defined(__x86_64__)

#include <immintrin.h>

// Only these functions use more than the base instructions, so the rest of the program starts on any processor.
#define WITH_SSE41 __attribute__((target("sse4.1")))

namespace quillmere {
namespace {

using PngFilters::Row;

constexpr size_t kPixels = 4;  // in a vector

/// Four pixels of the file in the order of QRgb in memory: blue, green, red, alpha.
template <int kChannels>
WITH_SSE41 inline __m128i filtered(const Row& row, size_t x) {
  const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row.filtered + x * kChannels));
  const __m128i order = kChannels == 3 ? _mm_setr_epi8(2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9, -1)
                                       : _mm_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15);
  return _mm_shuffle_epi8(bytes, order);
}

WITH_SSE41 inline __m128i above(const Row& row, size_t x) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(row.above + x));
}

template <int kChannels>
WITH_SSE41 inline void store(const Row& row, size_t x, __m128i pixels) {
  if constexpr (kChannels == 3) pixels = _mm_or_si128(pixels, _mm_set1_epi32(static_cast<int>(0xFF000000)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(row.pixels + x), pixels);
}

template <int kChannels>
WITH_SSE41 void undoNone(const Row& row) {
  for (size_t x = 0; x < row.width; x += kPixels) store<kChannels>(row, x, filtered<kChannels>(row, x));
}

template <int kChannels>
WITH_SSE41 void undoUp(const Row& row) {
  for (size_t x = 0; x < row.width; x += kPixels) {
    store<kChannels>(row, x, _mm_add_epi8(filtered<kChannels>(row, x), above(row, x)));
  }
}

/// Each pixel is the sum of all differences before it: the four in a vector are summed in two steps.
template <int kChannels>
WITH_SSE41 void undoSub(const Row& row) {
  __m128i left = _mm_setzero_si128();  // in every place
  for (size_t x = 0; x < row.width; x += kPixels) {
    __m128i sums = filtered<kChannels>(row, x);
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 4));
    sums = _mm_add_epi8(sums, _mm_slli_si128(sums, 8));
    sums = _mm_add_epi8(sums, left);
    store<kChannels>(row, x, sums);
    left = _mm_shuffle_epi32(sums, _MM_SHUFFLE(3, 3, 3, 3));
  }
}

WITH_SSE41 inline __m128i inverted(__m128i pixels) {
  return _mm_xor_si128(pixels, _mm_set1_epi8(-1));
}

/// The processor's average rounds up, the filter's down. Of inverted bytes, up is down: everything here is inverted but
/// the difference.
WITH_SSE41 inline __m128i averaged(__m128i difference, __m128i left, __m128i up) {
  return _mm_sub_epi8(_mm_avg_epu8(left, up), difference);
}

template <int kChannels>
WITH_SSE41 void undoAverage(const Row& row) {
  __m128i left = _mm_set1_epi8(-1);  // in the lowest place; the others hold what nobody reads
  for (size_t x = 0; x < row.width; x += kPixels) {
    const __m128i differences = filtered<kChannels>(row, x);
    const __m128i ups = inverted(above(row, x));
    const __m128i first = averaged(differences, left, ups);
    const __m128i second = averaged(_mm_srli_si128(differences, 4), first, _mm_srli_si128(ups, 4));
    const __m128i third = averaged(_mm_srli_si128(differences, 8), second, _mm_srli_si128(ups, 8));
    left = averaged(_mm_srli_si128(differences, 12), third, _mm_srli_si128(ups, 12));
    const __m128i all = _mm_unpacklo_epi64(_mm_unpacklo_epi32(first, second), _mm_unpacklo_epi32(third, left));
    store<kChannels>(row, x, inverted(all));
  }
}

/// What the Paeth filter needs of two pixels' surroundings besides the pixel on the left, 16 bits a channel.
struct PaethPair {
  __m128i difference;
  __m128i above;
  __m128i corner;           // with the difference added
  __m128i cornerLessAbove;  // three times the corner less the one above
};

WITH_SSE41 inline PaethPair paethPair(__m128i difference, __m128i up, __m128i corner) {
  const __m128i threeCorners = _mm_add_epi16(_mm_add_epi16(corner, corner), corner);
  return {difference, up, _mm_add_epi8(corner, difference), _mm_sub_epi16(threeCorners, up)};
}

WITH_SSE41 inline PaethPair second(const PaethPair& pair) {
  return {_mm_srli_si128(pair.difference, 8), _mm_srli_si128(pair.above, 8), _mm_srli_si128(pair.corner, 8),
          _mm_srli_si128(pair.cornerLessAbove, 8)};
}

/// Every pixel waits for the one on its left, so the chain of instructions between them decides the speed. Of the left
/// and the upper neighbour the smaller is nearest where 3 × corner - left - above reaches the larger one, the larger
/// where it stays down at the smaller one, and the corner in between: one subtraction, one comparison and two choices.
WITH_SSE41 inline __m128i paeth(const PaethPair& pair, __m128i left) {
  const __m128i threshold = _mm_sub_epi16(pair.cornerLessAbove, left);
  const __m128i smaller = _mm_min_epi16(left, pair.above);
  const __m128i larger = _mm_max_epi16(left, pair.above);
  const __m128i smallerOrCorner =
      _mm_blendv_epi8(_mm_add_epi8(smaller, pair.difference), pair.corner, _mm_cmpgt_epi16(larger, threshold));
  return _mm_blendv_epi8(_mm_add_epi8(larger, pair.difference), smallerOrCorner, _mm_cmpgt_epi16(threshold, smaller));
}

template <int kChannels>
WITH_SSE41 void undoPaeth(const Row& row) {
  const __m128i zero = _mm_setzero_si128();
  __m128i left = zero;    // in the lower half
  __m128i before = zero;  // the two pixels above that were read last
  for (size_t x = 0; x < row.width; x += kPixels) {
    const __m128i differences = filtered<kChannels>(row, x);
    const __m128i ups = above(row, x);
    const __m128i lowerUps = _mm_unpacklo_epi8(ups, zero);
    const __m128i upperUps = _mm_unpackhi_epi8(ups, zero);
    const PaethPair lower =
        paethPair(_mm_unpacklo_epi8(differences, zero), lowerUps, _mm_alignr_epi8(lowerUps, before, 8));
    const PaethPair upper =
        paethPair(_mm_unpackhi_epi8(differences, zero), upperUps, _mm_alignr_epi8(upperUps, lowerUps, 8));
    const __m128i pixel0 = paeth(lower, left);
    const __m128i pixel1 = paeth(second(lower), pixel0);
    const __m128i pixel2 = paeth(upper, pixel1);
    left = paeth(second(upper), pixel2);
    before = upperUps;
    store<kChannels>(row, x, _mm_packus_epi16(_mm_unpacklo_epi64(pixel0, pixel1), _mm_unpacklo_epi64(pixel2, left)));
  }
}

template <int kChannels>
void undoRow(uint8_t kind, const Row& row) {
  constexpr void (*kKernels[])(const Row&) = {&undoNone<kChannels>, &undoSub<kChannels>, &undoUp<kChannels>,
                                              &undoAverage<kChannels>, &undoPaeth<kChannels>};
  kKernels[kind](row);
}

}  // namespace

bool PngFiltersVector::isPossible() {
  return __builtin_cpu_supports("sse4.1");
}

void PngFiltersVector::undo(uint8_t kind, int channels, const PngFilters::Row& row) {
  channels == 3 ? undoRow<3>(kind, row) : undoRow<4>(kind, row);
}

}  // namespace quillmere

#else

namespace quillmere {

bool PngFiltersVector::isPossible() {
  return false;
}

void PngFiltersVector::undo(uint8_t kind, int channels, const PngFilters::Row& row) {
  PngFilters::undoPlainly(kind, channels, row);
}

}  // namespace quillmere

#endif
