#include "detection/ShadowFallOff.h"

#include <gtest/gtest.h>

#include "detection/PlainShadow.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowShadow {
namespace {

using Kind = FallOff::Kind;
using Profile = std::vector<double>;

FallOff read(const Profile& profile) {
  const FallOff found = fallOff(profile);
  const plain::FallOff wanted = plain::fallOff(profile);
  EXPECT_EQ(static_cast<int>(found.kind), static_cast<int>(wanted.seen));
  EXPECT_EQ(found.extent, wanted.extent);
  EXPECT_EQ(found.nearResidual, wanted.nearResidual);
  return found;
}

Profile flat(size_t length, double level = 200) {
  return Profile(length, level);
}
/// A flat background, darker by so much at the first samples.
Profile darkened(size_t length, const std::vector<double>& byHowMuch) {
  Profile profile = flat(length);
  for (size_t i = 0; i < byHowMuch.size(); ++i) profile[i] -= byHowMuch[i];
  return profile;
}
/// What sample `i` must be for its residual: set off from the line through those beyond it.
double sampleWith(double residual, const Profile& profile, size_t i) {
  double meanY = 0;
  for (size_t j = i + 4; j <= i + 19; ++j) meanY += profile[j];
  meanY /= 16;
  const double meanX = static_cast<double>(i) + 11.5;
  double products = 0;
  for (size_t j = i + 4; j <= i + 19; ++j) products += (static_cast<double>(j) - meanX) * (profile[j] - meanY);
  const double slope = products / 340;
  const double line = slope * static_cast<double>(i) + (meanY - slope * meanX);
  double sample = line - residual;
  // The last digit may have been rounded away.
  for (int step = 0; step < 4 && line - sample < residual; ++step) sample = std::nextafter(sample, -1e9);
  for (int step = 0; step < 4 && line - sample > residual; ++step) sample = std::nextafter(sample, 1e9);
  return sample;
}
/// A profile of 19 samples more than residuals, which it has. The levels stay between 128 and 256, or by 0, where these
/// are exact.
Profile profileOf(const std::vector<double>& residuals, double level = 190) {
  Profile profile = flat(residuals.size() + 19, level);
  for (size_t i = residuals.size(); i-- > 0;) profile[i] = sampleWith(residuals[i], profile, i);
  return profile;
}
using Places = std::initializer_list<std::pair<size_t, double>>;
/// 102 residuals: these, and from the 51st on `far` up and down by turns. Of these 52, the sigma is 1.4826 times `far`.
FallOff readResiduals(Places places, double far = 0) {
  std::vector<double> residuals(102);
  for (size_t i = 50; i < 102; ++i) residuals[i] = i % 2 == 0 ? far : -far;
  for (const auto& [at, residual] : places) residuals[at] = residual;
  return read(profileOf(residuals));
}

TEST(ShadowFallOffTest, AProfileBelowThirtyFourSamplesIsUnreadable) {
  EXPECT_EQ(read(flat(33)), FallOff());
  EXPECT_EQ(read({}), FallOff());
  EXPECT_EQ(read(flat(34)).kind, Kind::clear);
}

TEST(ShadowFallOffTest, AFlatBackgroundIsClear) {
  EXPECT_EQ(read(flat(100)), (FallOff{Kind::clear, 0, 0}));
}

TEST(ShadowFallOffTest, AGradientIsBackgroundToo) {
  Profile profile;
  for (int i = 0; i < 100; ++i) profile.push_back(50 + 1.5 * i);
  const FallOff found = read(profile);
  EXPECT_EQ(found.kind, Kind::clear);
  EXPECT_NEAR(found.nearResidual, 0, 1e-9);
}

TEST(ShadowFallOffTest, OnAFlatBackgroundTheLastTwoSamplesOfHalfALevelAreTheEnd) {
  // 20, 19 ... 1, then nothing.
  std::vector<double> ramp;
  for (int i = 20; i > 0; --i) ramp.push_back(i * i / 10.0);
  const FallOff found = read(darkened(100, ramp));
  EXPECT_EQ(found.kind, Kind::extentFound);
  EXPECT_EQ(found.extent, 18) << "0.4 at index 18 is too faint, 0.9 at 17 is not";
}

TEST(ShadowFallOffTest, HalfALevelIsEnough) {
  for (const double faint : {0.5, 0.499}) {
    const FallOff found = read(darkened(100, {9, 8, 7, 6, 5, 4, 3, 2, 1, faint}));
    EXPECT_EQ(found.kind, Kind::extentFound);
    EXPECT_EQ(found.extent, faint == 0.5 ? 10 : 9);
  }
}

TEST(ShadowFallOffTest, ASingleSampleIsNoEnd) {
  EXPECT_EQ(readResiduals({{30, 5}, {22, 5}}).kind, Kind::clear);
  EXPECT_EQ(readResiduals({{1, 5}, {0, 5}}).kind, Kind::clear) << "the walk ends before the second sample";
  EXPECT_EQ(readResiduals({{2, 5}, {1, 5}}).extent, 3);
  EXPECT_EQ(readResiduals({{2, 5}, {1, 0.499}}).kind, Kind::clear);
  EXPECT_EQ(readResiduals({{30, 0.499}, {29, 5}, {21, 5}, {20, 5}, {13, 5}, {12, 5}}).extent, 22)
      << "the first two of 0.5";
}

TEST(ShadowFallOffTest, TheFarthestResidualsCanBeTheEnd) {
  EXPECT_EQ(readResiduals({{101, 5}, {100, 5}, {93, 5}}).extent, 102);
}

TEST(ShadowFallOffTest, TheNearResidualIsTheSecondSamples) {
  EXPECT_EQ(read(darkened(100, {7, 3})).nearResidual, 3);
}

TEST(ShadowFallOffTest, TheResidualKeepsRisingTowardTheWindow) {
  // Eight samples before the end it must reach 0.8 of the end's.
  EXPECT_EQ(readResiduals({{30, 5}, {29, 5}, {22, 4}}).extent, 31);
  EXPECT_EQ(readResiduals({{30, 5}, {29, 5}, {22, 3.99}, {21, 9}, {23, 9}}).extent, 0);
}

TEST(ShadowFallOffTest, NearTheWindowTheSecondSampleStandsForTheEighthBefore) {
  EXPECT_EQ(readResiduals({{6, 5}, {5, 5}, {1, 4}}).extent, 7);
  EXPECT_EQ(readResiduals({{6, 5}, {5, 5}, {1, 3.99}, {0, 9}, {2, 9}}).extent, 0);
  EXPECT_EQ(readResiduals({{8, 5}, {7, 5}, {1, 4}}).extent, 9) << "not the first";
  EXPECT_EQ(readResiduals({{8, 5}, {7, 5}, {1, 3.99}, {0, 9}}).extent, 0);
  EXPECT_EQ(readResiduals({{9, 5}, {8, 5}, {1, 4}}).extent, 10);
  EXPECT_EQ(readResiduals({{10, 5}, {9, 5}, {2, 4}}).extent, 11);
  EXPECT_EQ(readResiduals({{10, 5}, {9, 5}, {1, 4.5}}).extent, 0);
}

TEST(ShadowFallOffTest, AnIsolatedBumpIsPassedAndTheShadowBehindItFound) {
  EXPECT_EQ(readResiduals({{40, 5}, {39, 5}, {38, 5}, {12, 5}, {11, 5}, {4, 5}}).extent, 13);
}

TEST(ShadowFallOffTest, ABumpIsPassedDownToItsFoot) {
  // 36 would be an end, as 28 is as dark; but it belongs to the bump that begins at 40, which is none.
  EXPECT_EQ(readResiduals({{40, 5}, {39, 5}, {38, 5}, {37, 5}, {36, 2}, {35, 2}, {28, 2}}).extent, 0);
  EXPECT_EQ(readResiduals({{40, 5}, {39, 5}, {38, 5}, {37, 0.499}, {36, 2}, {35, 2}, {28, 2}}).extent, 37);
  EXPECT_EQ(readResiduals({{40, 5}, {39, 5}, {38, 5}, {37, 0.5}, {36, 2}, {35, 2}, {28, 2}}).extent, 0);
}

TEST(ShadowFallOffTest, ABumpThatReachesTheWindowEndsTheWalk) {
  EXPECT_EQ(readResiduals({{4, 5}, {3, 5}, {2, 5}, {1, 3}, {0, 3}}).kind, Kind::clear);
}

TEST(ShadowFallOffTest, TheThresholdIsThreeSigmas) {
  // 3 * 1.4826 * 0.3 is 1.33434.
  EXPECT_EQ(readResiduals({{10, 1.335}, {9, 1.335}, {2, 1.335}}, 0.3).extent, 11);
  EXPECT_EQ(readResiduals({{10, 1.334}, {9, 1.335}, {2, 1.335}}, 0.3).extent, 0);
  EXPECT_EQ(readResiduals({{10, 1.335}, {9, 1.334}, {2, 1.335}}, 0.3).extent, 0);
  EXPECT_EQ(readResiduals({{10, 0.5}, {9, 0.5}, {2, 0.5}}, 0.1).extent, 11) << "but at least half a level";
  EXPECT_EQ(readResiduals({{10, 0.52}, {9, 0.52}, {2, 0.52}}, 0.12).extent, 0) << "0.534";
}

TEST(ShadowFallOffTest, ABusyBackgroundIsUnreadable) {
  // A sigma of 2 gives a threshold of 6.
  EXPECT_EQ(readResiduals({}, 1.3489).kind, Kind::clear);
  EXPECT_EQ(readResiduals({{1, 2.5}}, 1.3490).kind, Kind::unreadable);
  EXPECT_EQ(readResiduals({{10, 9}, {9, 9}, {2, 9}}, 1.3489).extent, 11);
  EXPECT_EQ(readResiduals({{10, 9}, {9, 9}, {2, 9}}, 1.3490), (FallOff{Kind::unreadable, 0, 0}));
}

TEST(ShadowFallOffTest, AThresholdOfExactlySixIsBusy) {
  double far = 2 / 1.4826;
  while (1.4826 * far < 2) far = std::nextafter(far, 2);
  ASSERT_EQ(3 * (1.4826 * far), 6.0);
  std::vector<double> residuals(102);
  for (size_t i = 50; i < 102; ++i) residuals[i] = i % 2 == 0 ? far : -far;
  const Profile profile = profileOf(residuals, 0);
  EXPECT_EQ(read(profile).kind, Kind::unreadable);
}

TEST(ShadowFallOffTest, TheFartherHalfBeginsInTheMiddle) {
  // With one residual more or less, ups would outnumber downs and the median be one of them: a sigma of 0.
  for (const size_t count : {102, 103}) {
    const size_t middle = (count - 1) / 2;
    std::vector<double> residuals(count);
    for (size_t i = middle - 2; i < count; ++i) residuals[i] = (count - i) % 2 == 0 ? 0.3 : -0.3;
    residuals[10] = residuals[9] = residuals[2] = 1;
    EXPECT_EQ(read(profileOf(residuals)).kind, Kind::clear) << "below a threshold of 1.33";
    residuals.erase(residuals.begin() + 20, residuals.begin() + 22);
    EXPECT_EQ(read(profileOf(residuals)).kind, Kind::extentFound) << "an odd number: " << count;
  }
}

TEST(ShadowFallOffTest, TheFartherHalfAloneIsTheBackground) {
  // Noise in the nearer half does not raise the threshold: its middle belongs to the farther half.
  Profile profile = flat(120);
  pictures::RandomPicture random(5);
  for (size_t i = 0; i < 40; ++i) profile[i] -= random.between(-30, 30);
  EXPECT_NE(read(profile).kind, Kind::unreadable);
  Profile reversed(profile.rbegin(), profile.rend());
  EXPECT_EQ(read(reversed).kind, Kind::unreadable);
}

TEST(ShadowFallOffTest, RandomProfilesAreReadByThePlainRules) {
  int kinds[3] = {0, 0, 0};
  for (uint32_t seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    Profile profile;
    const double reach = random.between(2, 90);
    const double depth = random.between(0, 60);
    const double slope = random.between(-20, 20) / 40.0;
    const double noise = std::array{0.0, 0.02, 0.2, 1.0, 4.0}[seed % 5];
    const int length = random.between(30, 340);
    for (int i = 0; i < length; ++i) {
      const double share = std::max(0.0, 1 - i / reach);
      profile.push_back(120 + slope * i - depth * share * share + noise * random.between(-100, 100) / 100.0);
    }
    for (int bump = random.upTo(3); bump > 0; --bump) {
      const int at = random.upTo(length - 9);
      for (int i = 0; i < random.between(1, 9); ++i) profile[at + i] -= random.between(-5, 30);
    }
    ++kinds[static_cast<int>(read(profile).kind)];
  }
  for (const int count : kinds) EXPECT_GT(count, 100);
}

TEST(ShadowMedianTest, ItIsTheMiddleValueOrTheMeanOfTwo) {
  EXPECT_EQ(median({}), std::nullopt);
  EXPECT_EQ(median({5}), 5);
  EXPECT_EQ(median({5, 1}), 3);
  EXPECT_EQ(median({9, 1, 5}), 5);
  EXPECT_EQ(median({9, 1, 5, 6}), 5.5);
  EXPECT_EQ(median({-9, -1, -5, -6}), -5.5);
}

TEST(ShadowMedianTest, TheRobustSigmaIsScaledAndNotMovedByOutliers) {
  EXPECT_EQ(robustSigma({}), 0);
  EXPECT_EQ(robustSigma({4}), 0);
  EXPECT_EQ(robustSigma({1, 2, 3, 4, 5}), 1.4826);
  EXPECT_EQ(robustSigma({1, 2, 3, 4, 5000}), 1.4826);
  EXPECT_EQ(robustSigma({0, 4}), 1.4826 * 2);
}

TEST(ShadowMedianTest, RandomValuesGiveWhatSortingGives) {
  for (uint32_t seed = 1; seed <= 200; ++seed) {
    pictures::RandomPicture random(seed);
    std::vector<double> values;
    for (int i = random.upTo(60); i > 0; --i) values.push_back(random.between(-500, 500) / 7.0);
    EXPECT_EQ(median(values), plain::median(values)) << "seed " << seed;
    EXPECT_EQ(robustSigma(values), plain::robustSigma(values)) << "seed " << seed;
  }
}

}  // namespace
}  // namespace quillmere::WindowShadow
