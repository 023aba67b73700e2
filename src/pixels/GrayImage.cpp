#include "pixels/GrayImage.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quillmere {
namespace {

constexpr int64_t kSmallestSide = 9;

// Of red, green and blue; a sum of 128 is exact in a byte.
constexpr int kRed = 27;
constexpr int kGreen = 92;
constexpr int kBlue = 9;
constexpr int kHalf = 64;
constexpr int kShift = 7;

void grayPixels(const uint32_t* pixels, uint8_t* gray, int64_t begin, int64_t end) {
  for (int64_t i = begin; i < end; ++i) {
    const uint32_t pixel = pixels[i];
    const uint32_t sum = kRed * ((pixel >> 16) & 255) + kGreen * ((pixel >> 8) & 255) + kBlue * (pixel & 255);
    gray[i] = static_cast<uint8_t>((sum + kHalf) >> kShift);
  }
}

#if defined(__x86_64__)

/// 32 pixels a step; gives how many are done.
__attribute__((target("avx2"))) int64_t grayWithAvx2(const uint32_t* pixels, uint8_t* gray, int64_t count) {
  const __m256i weights = _mm256_set1_epi32(kBlue | (kGreen << 8) | (kRed << 16));
  const __m256i ones = _mm256_set1_epi16(1);
  const __m256i half = _mm256_set1_epi32(kHalf);
  // The packs work within 128-bit lanes; this puts their fours back in order.
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  int64_t i = 0;
  for (; i + 32 <= count; i += 32) {
    __m256i sums[4];
    for (int part = 0; part < 4; ++part) {
      const __m256i eight = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + i + 8 * part));
      const __m256i pairs = _mm256_maddubs_epi16(eight, weights);
      sums[part] = _mm256_srli_epi32(_mm256_add_epi32(_mm256_madd_epi16(pairs, ones), half), kShift);
    }
    const __m256i bytes =
        _mm256_packus_epi16(_mm256_packs_epi32(sums[0], sums[1]), _mm256_packs_epi32(sums[2], sums[3]));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(gray + i), _mm256_permutevar8x32_epi32(bytes, order));
  }
  return i;
}

/// 16 pixels a step; gives how many are done.
int64_t grayWithSse2(const uint32_t* pixels, uint8_t* gray, int64_t count) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i weights = _mm_setr_epi16(kBlue, kGreen, kRed, 0, kBlue, kGreen, kRed, 0);
  const __m128i half = _mm_set1_epi32(kHalf);
  int64_t i = 0;
  for (; i + 16 <= count; i += 16) {
    __m128i sums[4];
    for (int part = 0; part < 4; ++part) {
      const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + i + 4 * part));
      const __m128 low = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpacklo_epi8(four, zero), weights));
      const __m128 high = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpackhi_epi8(four, zero), weights));
      const __m128i blueGreen = _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0)));
      const __m128i red = _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1)));
      sums[part] = _mm_srli_epi32(_mm_add_epi32(_mm_add_epi32(blueGreen, red), half), kShift);
    }
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(sums[0], sums[1]), _mm_packs_epi32(sums[2], sums[3]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(gray + i), bytes);
  }
  return i;
}

#endif

bool isPlain(const QImage& image) {
  return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied;
}

}  // namespace

GrayImage::GrayImage(int64_t width, int64_t height)
    : width_(width),
      height_(height),
      pixels_(std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(width * height + kPadding))) {
  std::memset(pixels_.get() + width * height, 0, kPadding);
}

void grayRow(const uint32_t* pixels, uint8_t* gray, int64_t count, [[maybe_unused]] Instructions instructions) {
  int64_t done = 0;
#if defined(__x86_64__)
  done = instructions == Instructions::avx2 ? grayWithAvx2(pixels, gray, count) : grayWithSse2(pixels, gray, count);
#endif
  grayPixels(pixels, gray, done, count);
}

std::optional<GrayImage> grayImage(const QImage& image) {
  if (image.width() < kSmallestSide || image.height() < kSmallestSide) return std::nullopt;
  GrayImage gray(image.width(), image.height());
  // A picture in another form is turned into the plain one a strip at a time: a whole copy would be four bytes a pixel.
  constexpr int kStrip = 64;
  for (int top = 0; top < image.height(); top += kStrip) {
    const int rows = std::min(kStrip, image.height() - top);
    const QImage strip =
        isPlain(image) ? image
                       : image.copy(0, top, image.width(), rows).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int first = isPlain(image) ? top : 0;
    for (int y = 0; y < rows; ++y) {
      grayRow(reinterpret_cast<const uint32_t*>(strip.constScanLine(first + y)), gray.row(top + y), image.width());
    }
  }
  return gray;
}

}  // namespace quillmere
