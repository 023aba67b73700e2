#include "pixels/ScalingStepsVector.h"

#if defined(__x86_64__)

#include <immintrin.h>
#include <cstring>

namespace quillmere {
namespace {

constexpr size_t kChannels = ScalingSteps::kChannels;
constexpr int kLevelBits = ScalingSteps::kLevelBits;
constexpr int kWeightBits = ScalingSteps::kWeightBits;

__m128i load(const void* place) {
  return _mm_loadu_si128(static_cast<const __m128i*>(place));
}
__m128i loadHalf(const void* place) {
  return _mm_loadl_epi64(static_cast<const __m128i*>(place));
}
void store(void* place, __m128i vector) {
  _mm_storeu_si128(static_cast<__m128i*>(place), vector);
}
void storeHalf(void* place, __m128i vector) {
  _mm_storel_epi64(static_cast<__m128i*>(place), vector);
}

/// Two pixels, 16 bits a channel.
__m128i premultiplied(__m128i pixels) {
  const __m128i alphas = _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, 0xFF), 0xFF);
  const __m128i products = _mm_mullo_epi16(pixels, alphas);
  const __m128i rounded = _mm_add_epi16(_mm_add_epi16(products, _mm_srli_epi16(products, 8)), _mm_set1_epi16(128));
  const __m128i isAlpha = _mm_set_epi16(-1, 0, 0, 0, -1, 0, 0, 0);
  return _mm_or_si128(_mm_andnot_si128(isAlpha, _mm_srli_epi16(rounded, 8)), _mm_and_si128(isAlpha, pixels));
}

void premultiply(const QRgb* row, size_t width, QRgb* result) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i opaque = _mm_set1_epi32(static_cast<int>(0xFF000000));
  size_t x = 0;
  for (; x + 4 <= width; x += 4) {
    __m128i pixels = load(row + x);
    // Most of most pictures.
    const bool isOpaque = _mm_movemask_epi8(_mm_cmpeq_epi32(_mm_and_si128(pixels, opaque), opaque)) == 0xFFFF;
    if (!isOpaque) {
      pixels = _mm_packus_epi16(premultiplied(_mm_unpacklo_epi8(pixels, zero)),
                                premultiplied(_mm_unpackhi_epi8(pixels, zero)));
    }
    store(result + x, pixels);
  }
  plainScalingSteps().premultiply(row + x, width - x, result + x);
}

/// Sums of four pixels' channels: of two bytes as one word, and of the second byte alone. Together they tell the sum of
/// each, with few instructions for each row.
struct PixelSums {
  __m128i words = _mm_setzero_si128();
  __m128i seconds = _mm_setzero_si128();

  void add(const QRgb* pixels) {
    const __m128i four = load(pixels);
    words = _mm_add_epi16(words, four);
    seconds = _mm_add_epi16(seconds, _mm_srli_epi16(four, 8));
  }
  void storeIn(uint16_t* sums) const {
    const __m128i firsts = _mm_sub_epi16(words, _mm_slli_epi16(seconds, 8));
    store(sums, _mm_unpacklo_epi16(firsts, seconds));
    store(sums + 8, _mm_unpackhi_epi16(firsts, seconds));
  }
};

void sumRows(const QRgb* const* rows, int count, size_t width, uint16_t* sums) {
  size_t x = 0;
  for (; x + 16 <= width; x += 16, sums += 16 * kChannels) {
    PixelSums first;
    PixelSums second;
    PixelSums third;
    PixelSums fourth;
    for (int row = 0; row < count; ++row) {
      const QRgb* pixels = rows[row] + x;
      first.add(pixels);
      second.add(pixels + 4);
      third.add(pixels + 8);
      fourth.add(pixels + 12);
    }
    first.storeIn(sums);
    second.storeIn(sums + 4 * kChannels);
    third.storeIn(sums + 8 * kChannels);
    fourth.storeIn(sums + 12 * kChannels);
  }
  for (; x < width; ++x) {
    for (size_t i = 0; i < kChannels; ++i, ++sums) {
      uint32_t sum = 0;
      for (int row = 0; row < count; ++row) sum += rows[row][x] >> (8 * i) & 255;
      *sums = static_cast<uint16_t>(sum);
    }
  }
}

/// Of sums of 32 bits.
__m128i levelsOf(__m128i sums, __m128 factor) {
  return _mm_cvtps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(sums), factor));
}

void average(const uint16_t* sums, int cell, int rows, size_t cells, int16_t* levels) {
  const __m128i zero = _mm_setzero_si128();
  const __m128 factor = _mm_set1_ps(ScalingSteps::factorOf(cell * rows));
  const bool isSmall = cell * rows * 255 <= UINT16_MAX;
  for (; cells > 0; --cells, levels += kChannels) {
    __m128i sum = zero;
    if (isSmall) {
      int k = 0;
      for (; k + 2 <= cell; k += 2, sums += 2 * kChannels) sum = _mm_add_epi16(sum, load(sums));
      sum = _mm_add_epi16(sum, _mm_srli_si128(sum, 8));
      if (k < cell) {
        sum = _mm_add_epi16(sum, loadHalf(sums));
        sums += kChannels;
      }
      sum = _mm_unpacklo_epi16(sum, zero);
    } else {
      for (int k = 0; k < cell; ++k, sums += kChannels) {
        sum = _mm_add_epi32(sum, _mm_unpacklo_epi16(loadHalf(sums), zero));
      }
    }
    storeHalf(levels, _mm_packs_epi32(levelsOf(sum, factor), zero));
  }
}

void widen(const QRgb* row, size_t width, int16_t* levels) {
  const __m128i zero = _mm_setzero_si128();
  size_t x = 0;
  for (; x + 4 <= width; x += 4) {
    const __m128i pixels = load(row + x);
    store(levels + kChannels * x, _mm_slli_epi16(_mm_unpacklo_epi8(pixels, zero), kLevelBits));
    store(levels + kChannels * x + 8, _mm_slli_epi16(_mm_unpackhi_epi8(pixels, zero), kLevelBits));
  }
  plainScalingSteps().widen(row + x, width - x, levels + kChannels * x);
}

/// Two weights that stand next to each other.
int pairOf(const int16_t* weights) {
  int pair = 0;
  std::memcpy(&pair, weights, sizeof pair);
  return pair;
}

/// One pixel after the other, from level `i` on.
void mixRest(const int16_t* const* rows, const int16_t* weights, int taps, size_t i, size_t end, int16_t* levels) {
  for (; i < end; i += kChannels) {
    __m128i sum = _mm_set1_epi32(1 << (kWeightBits - 1));
    for (int tap = 0; tap < taps; tap += 2) {
      const __m128i both = _mm_unpacklo_epi16(loadHalf(rows[tap] + i), loadHalf(rows[tap + 1] + i));
      sum = _mm_add_epi32(sum, _mm_madd_epi16(both, _mm_set1_epi32(pairOf(weights + tap))));
    }
    const __m128i mean = _mm_srai_epi32(sum, kWeightBits);
    storeHalf(levels + i, _mm_packs_epi32(mean, mean));
  }
}

void mixRows(const int16_t* const* rows, const int16_t* weights, int taps, size_t count, int16_t* levels) {
  const __m128i half = _mm_set1_epi32(1 << (kWeightBits - 1));
  size_t i = 0;
  for (; i + 8 <= kChannels * count; i += 8) {
    __m128i lower = half;
    __m128i upper = half;
    for (int tap = 0; tap < taps; tap += 2) {
      const __m128i pair = _mm_set1_epi32(pairOf(weights + tap));
      const __m128i first = load(rows[tap] + i);
      const __m128i second = load(rows[tap + 1] + i);
      lower = _mm_add_epi32(lower, _mm_madd_epi16(_mm_unpacklo_epi16(first, second), pair));
      upper = _mm_add_epi32(upper, _mm_madd_epi16(_mm_unpackhi_epi16(first, second), pair));
    }
    store(levels + i, _mm_packs_epi32(_mm_srai_epi32(lower, kWeightBits), _mm_srai_epi32(upper, kWeightBits)));
  }
  mixRest(rows, weights, taps, i, kChannels * count, levels);
}

__attribute__((target("avx2"))) void mixRowsWithAvx2(const int16_t* const* rows, const int16_t* weights, int taps,
                                                     size_t count, int16_t* levels) {
  const __m256i half = _mm256_set1_epi32(1 << (kWeightBits - 1));
  size_t i = 0;
  for (; i + 16 <= kChannels * count; i += 16) {
    __m256i lower = half;
    __m256i upper = half;
    for (int tap = 0; tap < taps; tap += 2) {
      const __m256i pair = _mm256_set1_epi32(pairOf(weights + tap));
      const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[tap] + i));
      const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[tap + 1] + i));
      lower = _mm256_add_epi32(lower, _mm256_madd_epi16(_mm256_unpacklo_epi16(first, second), pair));
      upper = _mm256_add_epi32(upper, _mm256_madd_epi16(_mm256_unpackhi_epi16(first, second), pair));
    }
    // Unpacking and packing keep to the halves alike.
    _mm256_storeu_si256(
        reinterpret_cast<__m256i*>(levels + i),
        _mm256_packs_epi32(_mm256_srai_epi32(lower, kWeightBits), _mm256_srai_epi32(upper, kWeightBits)));
  }
  // GCC leaves this out before a call in tail position, and everything after would run at a third of its speed.
  _mm256_zeroupper();
  mixRest(rows, weights, taps, i, kChannels * count, levels);
}

void mixPixels(const int16_t* levels, const ScalingWeights& plan, QRgb* row) {
  constexpr int kBits = kWeightBits + kLevelBits;
  const int16_t* weights = plan.weights.data();
  for (int x = 0; x < plan.to; ++x, weights += plan.taps) {
    const int16_t* pixels = levels + kChannels * static_cast<size_t>(plan.firsts[static_cast<size_t>(x)]);
    __m128i sum = _mm_set1_epi32(1 << (kBits - 1));
    for (int tap = 0; tap < plan.taps; tap += 2, pixels += 2 * kChannels) {
      const __m128i two = load(pixels);
      const __m128i channels = _mm_unpacklo_epi16(two, _mm_srli_si128(two, 8));
      sum = _mm_add_epi32(sum, _mm_madd_epi16(channels, _mm_set1_epi32(pairOf(weights + tap))));
    }
    const __m128i words = _mm_packs_epi32(_mm_srai_epi32(sum, kBits), _mm_setzero_si128());
    row[x] = static_cast<QRgb>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
  }
}

}  // namespace

const ScalingSteps* vectorScalingSteps(Instructions instructions) {
  static const ScalingSteps baseline{&premultiply, &sumRows, &average, &widen, &mixRows, &mixPixels};
  static const ScalingSteps avx2{&premultiply, &sumRows, &average, &widen, &mixRowsWithAvx2, &mixPixels};
  return instructions == Instructions::avx2 ? &avx2 : &baseline;
}

}  // namespace quillmere

#else

namespace quillmere {

const ScalingSteps* vectorScalingSteps(Instructions) {
  return nullptr;
}

}  // namespace quillmere

#endif
