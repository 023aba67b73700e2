#include "detection/EdgeMaps.h"

#include <algorithm>
#include <bit>

#include "pixels/PixelBits.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quillmere::WindowDetector {
namespace {

constexpr int64_t kBlock = 64;

/// The rows above, at and below one, with its marks. `plainRows` counts for each column how many rows had no vertical
/// edge: one byte each, so at most 255 rows may be added.
struct RowStep {
  const uint8_t* above;
  const uint8_t* middle;
  const uint8_t* below;
  uint64_t* vertical;
  uint64_t* horizontal;
  uint8_t* plainRows;
};

#if defined(__x86_64__)

__attribute__((target("avx2"))) void markBlocksWithAvx2(const RowStep& step, int64_t words, uint8_t threshold) {
  const __m256i limit = _mm256_set1_epi8(static_cast<char>(threshold));
  const __m256i zero = _mm256_setzero_si256();
  for (int64_t word = 0; word < words; ++word) {
    uint64_t vertical = 0;
    uint64_t horizontal = 0;
    for (int part = 0; part < 2; ++part) {
      const int64_t x = kBlock * word + 32 * part;
      const __m256i left = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(step.middle + x - 1));
      const __m256i right = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(step.middle + x + 1));
      const __m256i across = _mm256_or_si256(_mm256_subs_epu8(left, right), _mm256_subs_epu8(right, left));
      const __m256i noVertical = _mm256_cmpeq_epi8(_mm256_subs_epu8(across, limit), zero);
      const __m256i above = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(step.above + x));
      const __m256i below = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(step.below + x));
      const __m256i down = _mm256_or_si256(_mm256_subs_epu8(above, below), _mm256_subs_epu8(below, above));
      const __m256i noHorizontal = _mm256_cmpeq_epi8(_mm256_subs_epu8(down, limit), zero);
      vertical |= static_cast<uint64_t>(~static_cast<uint32_t>(_mm256_movemask_epi8(noVertical))) << (32 * part);
      horizontal |= static_cast<uint64_t>(~static_cast<uint32_t>(_mm256_movemask_epi8(noHorizontal))) << (32 * part);
      // "True" is -1 in each byte.
      auto* counts = reinterpret_cast<__m256i*>(step.plainRows + x);
      _mm256_storeu_si256(counts, _mm256_sub_epi8(_mm256_loadu_si256(counts), noVertical));
    }
    step.vertical[word] = vertical;
    step.horizontal[word] = horizontal;
  }
}

__attribute__((target("popcnt"))) int countMarksWithPopcnt(const uint64_t* words, int64_t count) {
  int64_t marks = 0;
  for (int64_t word = 0; word < count; ++word) marks += _mm_popcnt_u64(words[word]);
  return static_cast<int>(marks);
}

#endif

void markBlocks(const RowStep& step, int64_t words, uint8_t threshold) {
  for (int64_t word = 0; word < words; ++word) {
    const int64_t x = kBlock * word;
    const uint64_t vertical = differenceBits(step.middle + x - 1, step.middle + x + 1, threshold);
    step.vertical[word] = vertical;
    step.horizontal[word] = differenceBits(step.above + x, step.below + x, threshold);
    for (int64_t i = 0; i < kBlock; ++i) step.plainRows[x + i] += static_cast<uint8_t>(~(vertical >> i) & 1);
  }
}

int countMarks(const uint64_t* words, int64_t count) {
  int marks = 0;
  for (int64_t word = 0; word < count; ++word) marks += std::popcount(words[word]);
  return marks;
}

struct Kernels {
  void (*markBlocks)(const RowStep& step, int64_t words, uint8_t threshold);
  int (*countMarks)(const uint64_t* words, int64_t count);
};

Kernels kernelsOf([[maybe_unused]] Instructions instructions) {
#if defined(__x86_64__)
  if (instructions == Instructions::avx2) return {&markBlocksWithAvx2, &countMarksWithPopcnt};
#endif
  return {&markBlocks, &countMarks};
}

/// Keeps the marks of the columns from 1 to `width` - 2.
void clearOutside(uint64_t* row, int64_t width) {
  row[0] &= ~uint64_t{1};
  const int64_t end = width - 1;
  row[end / kBlock] &= (uint64_t{1} << (end % kBlock)) - 1;
}

}  // namespace

EdgeMask::EdgeMask(int64_t width, int64_t height)
    : wordsPerRow_((width + kBlock - 1) / kBlock),
      words_(std::make_unique_for_overwrite<uint64_t[]>(static_cast<size_t>(wordsPerRow_ * height))) {}

bool EdgeMask::hasAny(int64_t from, int64_t to, int64_t y) const {
  const uint64_t* words = row(y);
  const uint64_t wanted = (uint64_t{2} << (to - from)) - 1;
  const int64_t shift = from % kBlock;
  uint64_t bits = words[from / kBlock] >> shift;
  if (to / kBlock != from / kBlock) bits |= words[to / kBlock] << (kBlock - shift);
  return (bits & wanted) != 0;
}

EdgeMaps::EdgeMaps(int64_t imageWidth, int64_t imageHeight)
    : width(imageWidth),
      height(imageHeight),
      verticalEdges(imageWidth, imageHeight),
      horizontalEdges(imageWidth, imageHeight),
      columnCounts(static_cast<size_t>(imageWidth)),
      rowCounts(static_cast<size_t>(imageHeight)) {}

EdgeMaps edgeMaps(const GrayImage& gray, int threshold, Instructions instructions) {
  const Kernels kernels = kernelsOf(instructions);
  constexpr int kMostRows = 255;
  EdgeMaps maps(gray.width(), gray.height());
  const int64_t words = maps.verticalEdges.wordsPerRow();
  std::vector<uint8_t> plainRows(static_cast<size_t>(words * kBlock));
  int rows = 0;
  const auto addCounts = [&] {
    for (int64_t x = 1; x < maps.width - 1; ++x) maps.columnCounts[x] += rows - plainRows[x];
    std::fill(plainRows.begin(), plainRows.end(), 0);
    rows = 0;
  };
  for (const int64_t ring : {int64_t{0}, maps.height - 1}) {
    std::fill_n(maps.verticalEdges.row(ring), words, 0);
    std::fill_n(maps.horizontalEdges.row(ring), words, 0);
  }
  for (int64_t y = 1; y < maps.height - 1; ++y) {
    uint64_t* vertical = maps.verticalEdges.row(y);
    uint64_t* horizontal = maps.horizontalEdges.row(y);
    kernels.markBlocks({gray.row(y - 1), gray.row(y), gray.row(y + 1), vertical, horizontal, plainRows.data()}, words,
                       static_cast<uint8_t>(threshold));
    clearOutside(vertical, maps.width);
    clearOutside(horizontal, maps.width);
    maps.rowCounts[y] = kernels.countMarks(horizontal, words);
    if (++rows == kMostRows) addCounts();
  }
  addCounts();
  return maps;
}

}  // namespace quillmere::WindowDetector
