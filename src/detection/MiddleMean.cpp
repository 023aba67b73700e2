#include "detection/MiddleMean.h"

#include <algorithm>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quillmere {
namespace {

/// For two values, how many samples are below each.
struct Below {
  int64_t first;
  int64_t second;
};
/// What one pass over all samples gives. `steps` is at most 255, as a byte counts those of its place.
struct Kernels {
  Below (*countBelow)(const uint8_t* samples, int64_t steps, uint8_t first, uint8_t second);
  int64_t (*sumClamped)(const uint8_t* samples, int64_t steps, uint8_t least, uint8_t most);
};

#if defined(__x86_64__)

__attribute__((target("avx2"))) int64_t sumOf(__m256i sums) {
  const __m128i pair = _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
  return _mm_cvtsi128_si64(pair) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(pair, pair));
}

__attribute__((target("avx2"))) Below countBelowWithAvx2(const uint8_t* samples, int64_t steps, uint8_t first,
                                                         uint8_t second) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i limits[2] = {_mm256_set1_epi8(static_cast<char>(first)), _mm256_set1_epi8(static_cast<char>(second))};
  __m256i notBelow[2] = {zero, zero};
  for (int64_t step = 0; step < steps; ++step) {
    const __m256i values = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples + kSampleStep * step));
    // "True" is -1 in each byte.
    for (int i = 0; i < 2; ++i) {
      notBelow[i] = _mm256_sub_epi8(notBelow[i], _mm256_cmpeq_epi8(_mm256_subs_epu8(limits[i], values), zero));
    }
  }
  const int64_t all = kSampleStep * steps;
  return {all - sumOf(_mm256_sad_epu8(notBelow[0], zero)), all - sumOf(_mm256_sad_epu8(notBelow[1], zero))};
}

__attribute__((target("avx2"))) int64_t sumClampedWithAvx2(const uint8_t* samples, int64_t steps, uint8_t least,
                                                           uint8_t most) {
  const __m256i low = _mm256_set1_epi8(static_cast<char>(least));
  const __m256i high = _mm256_set1_epi8(static_cast<char>(most));
  __m256i sums = _mm256_setzero_si256();
  for (int64_t step = 0; step < steps; ++step) {
    const __m256i values = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples + kSampleStep * step));
    const __m256i clamped = _mm256_min_epu8(_mm256_max_epu8(values, low), high);
    sums = _mm256_add_epi64(sums, _mm256_sad_epu8(clamped, _mm256_setzero_si256()));
  }
  return sumOf(sums);
}

#endif

Below countBelow(const uint8_t* samples, int64_t steps, uint8_t first, uint8_t second) {
  Below below{0, 0};
  for (int64_t i = 0; i < kSampleStep * steps; ++i) {
    below.first += samples[i] < first ? 1 : 0;
    below.second += samples[i] < second ? 1 : 0;
  }
  return below;
}

int64_t sumClamped(const uint8_t* samples, int64_t steps, uint8_t least, uint8_t most) {
  int64_t sum = 0;
  for (int64_t i = 0; i < kSampleStep * steps; ++i) sum += std::clamp(samples[i], least, most);
  return sum;
}

Kernels kernelsOf([[maybe_unused]] Instructions instructions) {
#if defined(__x86_64__)
  if (instructions == Instructions::avx2) return {&countBelowWithAvx2, &sumClampedWithAvx2};
#endif
  return {&countBelow, &sumClamped};
}

/// Finds the value at one place of the sorted samples without sorting them: the largest that has no more samples below
/// it than that place has before it. It begins where the last search ended, as neighbouring rows differ little.
class PlaceSearch {
 public:
  explicit PlaceSearch(int64_t place) : place_(place) {}

  void start() {
    low_ = 0;
    high_ = 255;
    probe_ = value_;
    step_ = 1;
    way_ = 0;
  }
  bool isFound() const { return low_ == high_; }
  /// The value to count the samples below of.
  uint8_t probe() const { return static_cast<uint8_t>(probe_); }
  uint8_t value() const { return static_cast<uint8_t>(value_); }

  void take(int64_t below) {
    if (isFound()) return;
    const int way = below <= place_ ? 1 : -1;
    if (way > 0) {
      low_ = probe_;
    } else {
      high_ = probe_ - 1;
    }
    value_ = low_;
    // On in growing steps until it is passed; then by halves.
    if (way_ == 0) way_ = way;
    if (way_ == way) {
      probe_ = std::clamp(probe_ + way * step_, low_ + 1, std::max(high_, low_ + 1));
      step_ *= 2;
    } else {
      way_ = 2;
      probe_ = (low_ + high_ + 1) / 2;
    }
  }

 private:
  int64_t place_;
  int value_ = 128;
  int low_ = 0;
  int high_ = 255;
  int probe_ = 0;
  int step_ = 1;
  int way_ = 0;  ///< 1 or -1 while going on in steps
};

}  // namespace

std::vector<double> middleMeans(const uint8_t* samples, int64_t stride, int64_t count, int64_t rows,
                                Instructions instructions) {
  const Kernels kernels = kernelsOf(instructions);
  const int64_t begin = count / 4;
  const int64_t end = std::max(begin + 1, 3 * count / 4);
  const int64_t steps = (count + kSampleStep - 1) / kSampleStep;
  // Clamped to the values at both ends of the middle half, what is before it is the one and what is after it, the
  // padding too, is the other.
  const int64_t after = kSampleStep * steps - end;
  PlaceSearch least(begin);
  PlaceSearch most(end - 1);
  std::vector<double> means(static_cast<size_t>(rows));
  for (double& mean : means) {
    least.start();
    most.start();
    while (!least.isFound() || !most.isFound()) {
      const Below below = kernels.countBelow(samples, steps, least.probe(), most.probe());
      least.take(below.first);
      most.take(below.second);
    }
    const int64_t sum =
        kernels.sumClamped(samples, steps, least.value(), most.value()) - begin * least.value() - after * most.value();
    mean = static_cast<double>(sum) / static_cast<double>(end - begin);
    samples += stride;
  }
  return means;
}

void takeEverySecond(const uint8_t* from, uint8_t* to, int64_t count) {
  int64_t i = 0;
#if defined(__x86_64__)
  const __m128i even = _mm_set1_epi16(0x00ff);
  // The last pixel has none after it that must exist.
  for (; i + 16 < count; i += 16) {
    const __m128i low = _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 2 * i)), even);
    const __m128i high = _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 2 * i + 16)), even);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(low, high));
  }
#endif
  for (; i < count; ++i) to[i] = from[2 * i];
}

void transposeBlock(const uint8_t* from, int64_t fromStride, uint8_t* to, int64_t toStride) {
#if defined(__x86_64__)
  __m128i rows[16];
  __m128i mixed[16];
  for (int i = 0; i < 16; ++i) rows[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i * fromStride));
  // Each round brings rows that are eight apart next to each other; after four they stand upright.
  for (int round = 0; round < 4; ++round) {
    for (int i = 0; i < 8; ++i) {
      mixed[2 * i] = _mm_unpacklo_epi8(rows[i], rows[i + 8]);
      mixed[2 * i + 1] = _mm_unpackhi_epi8(rows[i], rows[i + 8]);
    }
    std::swap(rows, mixed);
  }
  for (int i = 0; i < 16; ++i) _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i * toStride), rows[i]);
#else
  for (int i = 0; i < 16; ++i) {
    for (int k = 0; k < 16; ++k) to[k * toStride + i] = from[i * fromStride + k];
  }
#endif
}

}  // namespace quillmere
