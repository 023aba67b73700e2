#include "detection/MiddleMean.h"

#include <gtest/gtest.h>

#include "detection/PlainShadow.h"
#include "support/RandomPictures.h"

namespace quillmere {
namespace {

/// Of one row of samples.
double meanOf(std::vector<int> samples, Instructions instructions = bestInstructions()) {
  const auto count = static_cast<int64_t>(samples.size());
  while (samples.size() % kSampleStep != 0) samples.push_back(255);
  const std::vector<uint8_t> bytes(samples.begin(), samples.end());
  return middleMeans(bytes.data(), static_cast<int64_t>(bytes.size()), count, 1, instructions)[0];
}

TEST(MiddleMeanTest, TheQuarterAtEitherEndIsLeftOut) {
  EXPECT_EQ(meanOf({0, 0, 10, 20, 30, 41, 255, 255}), 25.25);
  EXPECT_EQ(meanOf({255, 41, 0, 20, 255, 10, 0, 30}), 25.25) << "in any order";
}

TEST(MiddleMeanTest, QuartersAreCutToWholeSamples) {
  EXPECT_EQ(meanOf({7}), 7);
  EXPECT_EQ(meanOf({7, 9}), 7) << "from 0 up to 1";
  EXPECT_EQ(meanOf({1, 10, 100}), 5.5) << "from 0 up to 2";
  EXPECT_EQ(meanOf({1, 10, 20, 100}), 15);
  EXPECT_EQ(meanOf({1, 10, 20, 100, 200}), 15) << "from 1 up to 3";
  EXPECT_EQ(meanOf({1, 10, 20, 100, 200, 201}), 130 / 3.0);
  EXPECT_EQ(meanOf({1, 10, 20, 30, 100, 200, 201}), 40) << "from 1 up to 5";
}

TEST(MiddleMeanTest, AllInstructionsAgreeWithSorting) {
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    const int64_t count = seed <= 130 ? seed : random.between(1, 1100);
    const int64_t rows = random.between(1, 12);
    const int64_t stride = (count + kSampleStep - 1) / kSampleStep * kSampleStep;
    std::vector<uint8_t> bytes(static_cast<size_t>(stride * rows), 255);
    std::vector<double> wanted;
    for (int64_t row = 0; row < rows; ++row) {
      const int least = random.upTo(3) == 0 ? random.upTo(1) * 200 : random.upTo(255);
      const int most = random.upTo(2) == 0 ? least : random.between(least, 255);
      std::vector<int> values;
      for (int64_t i = 0; i < count; ++i)
        values.push_back(random.upTo(20) == 0 ? random.upTo(255) : random.between(least, most));
      std::copy(values.begin(), values.end(), bytes.begin() + row * stride);
      wanted.push_back(plain::middleMean(values));
    }
    for (const Instructions instructions : pictures::instructions()) {
      EXPECT_EQ(middleMeans(bytes.data(), stride, count, rows, instructions), wanted);
    }
  }
}

TEST(MiddleMeanTest, ThousandsOfSamplesAreCountedInFull) {
  // As many as the byte that counts those of one place can tell apart.
  std::vector<int> samples;
  for (int i = 0; i < 8160; ++i) samples.push_back(255 - i % 7);
  for (const Instructions instructions : pictures::instructions()) {
    EXPECT_EQ(meanOf(samples, instructions), plain::middleMean(samples));
    EXPECT_EQ(meanOf(std::vector<int>(8160, 255), instructions), 255);
    EXPECT_EQ(meanOf(std::vector<int>(8160, 0), instructions), 0);
  }
}

TEST(MiddleMeanTest, EverySecondPixelIsTaken) {
  for (int count = 0; count < 80; ++count) {
    // No pixel follows the last that is taken.
    std::vector<uint8_t> from(static_cast<size_t>(std::max(0, 2 * count - 1)));
    for (size_t i = 0; i < from.size(); ++i) from[i] = static_cast<uint8_t>(i * 37 + 11);
    std::vector<uint8_t> to(static_cast<size_t>(count));
    takeEverySecond(from.data(), to.data(), count);
    for (size_t i = 0; i < to.size(); ++i) ASSERT_EQ(to[i], from[2 * i]) << i << " of " << count;
  }
}

TEST(MiddleMeanTest, ABlockIsTurned) {
  constexpr int64_t kStride = 37;
  std::array<uint8_t, 16 * kStride> from{};
  for (size_t i = 0; i < from.size(); ++i) from[i] = static_cast<uint8_t>(i * 31 + i / 256);
  std::array<uint8_t, 16 * 20> to{};
  transposeBlock(from.data(), kStride, to.data(), 20);
  std::array<uint8_t, 16 * 20> upsideDown{};
  transposeBlock(from.data(), kStride, upsideDown.data() + 15 * 20, -20);
  for (int64_t row = 0; row < 16; ++row) {
    for (int64_t column = 0; column < 16; ++column) {
      EXPECT_EQ(to[column * 20 + row], from[row * kStride + column]);
      EXPECT_EQ(upsideDown[(15 - column) * 20 + row], from[row * kStride + column]);
    }
    EXPECT_EQ(to[row * 20 + 16], 0) << "nothing beside it is touched";
  }
}

}  // namespace
}  // namespace quillmere
