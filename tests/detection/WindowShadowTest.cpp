#include "detection/WindowShadow.h"

#include <gtest/gtest.h>

#include "detection/PlainShadow.h"
#include "support/RandomPictures.h"

namespace quillmere {

// How failures show these.
inline void PrintTo(const WindowShadowMargin& margin, std::ostream* out) {
  *out << margin.left << ' ' << margin.top << ' ' << margin.right << ' ' << margin.bottom << " of source "
       << static_cast<int>(margin.source);
}

namespace WindowShadow {

inline void PrintTo(const SideReading& reading, std::ostream* out) {
  *out << "kind " << static_cast<int>(reading.kind) << " extent " << reading.extent
       << (reading.isClipped ? " clipped" : "");
}

namespace {

using Kind = SideReading::Kind;
using Source = WindowShadowMargin::Source;
const SideReading kClear{Kind::clear, 0, false};
const SideReading kUnreadable;
SideReading shadow(int64_t extent, bool isClipped = false) {
  return {Kind::shadow, extent, isClipped};
}

/// How far a shadow reaches on each side; one that is not smooth is unreadable noise.
constexpr int kNoise = -1;
struct Shadows {
  int left, top, right, bottom;
};

/// How dark it is at a distance: by 1 and 2 at the last two pixels, then by ever more.
int darkness(int reach, int64_t distance) {
  const auto inside = static_cast<int>(reach - distance);
  return inside <= 0 ? 0 : std::min(1 + inside * inside / 4, 170);
}
/// A window of level 250 before a background of 180. Each side is drawn over its own length alone.
plain::Gray screen(int64_t width, int64_t height, const QRectF& frame, const Shadows& shadows) {
  plain::Gray gray(width, height, 180);
  pictures::RandomPicture random(17);
  const auto at = [&](int reach, int64_t distance) {
    return reach == kNoise ? random.between(90, 250) : 180 - darkness(reach, distance);
  };
  const auto x1 = static_cast<int64_t>(frame.left());
  const auto y1 = static_cast<int64_t>(frame.top());
  const auto x2 = static_cast<int64_t>(frame.right());
  const auto y2 = static_cast<int64_t>(frame.bottom());
  for (int64_t y = y1; y < y2; ++y) {
    // Of one line, so that the noise is not evened out over the lines.
    for (int64_t x = 0; x < x1; ++x) pictures::set(gray, x, y, y == y1 ? at(shadows.left, x1 - 1 - x) : gray.at(x, y1));
    for (int64_t x = x2; x < width; ++x)
      pictures::set(gray, x, y, y == y1 ? at(shadows.right, x - x2) : gray.at(x, y1));
  }
  for (int64_t y = 0; y < y1; ++y) pictures::fill(gray, x1, y, x2 - x1, 1, at(shadows.top, y1 - 1 - y));
  for (int64_t y = y2; y < height; ++y) pictures::fill(gray, x1, y, x2 - x1, 1, at(shadows.bottom, y - y2));
  pictures::fill(gray, x1, y1, x2 - x1, y2 - y1, 250);
  return gray;
}

Measurement measured(const plain::Gray& gray, const QRectF& frame, std::optional<double> scale = std::nullopt) {
  const Measurement result = measure(pictures::grayImage(gray), frame, scale);
  const plain::Margin wanted = plain::marginOf(gray, frame, scale);
  EXPECT_EQ(static_cast<int>(result.margin.source), static_cast<int>(wanted.source));
  EXPECT_EQ((std::array{result.margin.left, result.margin.top, result.margin.right, result.margin.bottom}),
            wanted.sides);
  return result;
}
/// Of a window with ample room, in a picture of 800 by 800.
const QRectF kFrame(200, 200, 400, 400);
Measurement measured(const Shadows& shadows, std::optional<double> scale = std::nullopt) {
  return measured(screen(800, 800, kFrame, shadows), kFrame, scale);
}
SideReading reading(const plain::Gray& gray, Side side, const QRectF& frame) {
  const SideReading found = sideReading(side, pictures::grayImage(gray), frame);
  const plain::SideReading wanted = plain::sideReading(side, gray, frame);
  EXPECT_EQ(static_cast<int>(found.kind), static_cast<int>(wanted.reading));
  EXPECT_EQ(found.extent, wanted.extent);
  EXPECT_EQ(found.isClipped, wanted.isClipped);
  return found;
}
WindowShadowMargin margin(double left, double top, double right, double bottom, Source source) {
  return {left, top, right, bottom, source};
}

TEST(WindowShadowTest, AWindowWithoutAShadowIsClearAllAround) {
  const Measurement found = measured({0, 0, 0, 0});
  EXPECT_EQ(found.sides, (std::array{kClear, kClear, kClear, kClear}));
  EXPECT_EQ(found.margin, WindowShadowMargin());
}

TEST(WindowShadowTest, AShadowReachesToItsLastTwoFaintPixels) {
  const Measurement found = measured({30, 20, 30, 40});
  EXPECT_EQ(found.sides, (std::array{shadow(30), shadow(20), shadow(30), shadow(40)}));
  EXPECT_EQ(found.margin.source, Source::measured);
}

TEST(WindowShadowTest, TheMarginsAreWhatTheSidesAgreeOn) {
  // Normalized: 30, 28.99, 30 and 31.50; in the middle, 30.
  EXPECT_EQ(measured({30, 20, 30, 40}).margin, margin(30, 21, 30, 40, Source::measured));
  // 28, 28.99, 30, 31.50: 29.49. A shadow that reaches farther than is typical keeps its reach.
  EXPECT_EQ(measured({28, 20, 30, 40}).margin, margin(29, 20, 30, 40, Source::measured));
}

TEST(WindowShadowTest, AKnownScaleGivesTheTypicalMarginsExactly) {
  EXPECT_EQ(measured({30, 20, 30, 40}, 2).margin, margin(45, 31, 45, 57, Source::measured));
  EXPECT_EQ(measured({30, 20, 30, 40}, 1).margin, margin(23, 16, 23, 29, Source::measured)) << "22.5 becomes 23";
  EXPECT_EQ(measured({0, 0, 30, 0}, 2).margin, margin(45, 31, 45, 57, Source::measured)) << "one side confirms it";
  EXPECT_EQ(measured({0, 0, 0, 0}, 2).margin, WindowShadowMargin());
}

TEST(WindowShadowTest, WithAConsensusClearAndUnreadableSidesAreTypicalToo) {
  EXPECT_EQ(measured({30, 0, kNoise, 38}).sides, (std::array{shadow(30), kClear, kUnreadable, shadow(38)}));
  // 30 and 29.92: 29.96.
  EXPECT_EQ(measured({30, 0, kNoise, 38}).margin, margin(30, 21, 30, 38, Source::measured));
}

TEST(WindowShadowTest, AReadingFarFromTheOthersIsThrownOut) {
  // Of 10 and 40 the middle is 25, and 10 is below its half.
  EXPECT_EQ(measured({10, 0, 40, 0}).margin, margin(40, 28, 40, 51, Source::measured));
  // 13 is not below half of 26.
  EXPECT_EQ(measured({13, 0, 39, 0}).margin, margin(26, 18, 39, 33, Source::measured));
  EXPECT_EQ(measured({12, 0, 39, 0}).margin, margin(39, 27, 39, 50, Source::measured));
}

TEST(WindowShadowTest, AReadingOfTwiceTheMiddleIsKept) {
  // 20, 20 and 40: the middle 20 keeps 40, and the middle stays; what reaches farther keeps its reach.
  EXPECT_EQ(measured({20, 0, 20, 0}).margin.left, 20);
  EXPECT_EQ(measured({20, kNoise, 40, 25}).sides[bottom], shadow(25));
  // Normalized 20, 19.69 and 40.
  EXPECT_EQ(measured({20, kNoise, 40, 25}).margin, margin(20, 14, 40, 25, Source::measured));
  EXPECT_EQ(measured({20, kNoise, 41, 25}).margin, margin(20, 14, 20, 25, Source::measured)) << "41 is more than twice";
}

TEST(WindowShadowTest, WithoutASignAMarginIsATypicalShareOfThePicture) {
  // All sides unreadable: 0.025 of 800 is 20.
  const Measurement found = measured({kNoise, kNoise, kNoise, kNoise});
  EXPECT_EQ(found.sides, (std::array{kUnreadable, kUnreadable, kUnreadable, kUnreadable}));
  EXPECT_EQ(found.margin, margin(20, 14, 20, 25, Source::estimated));
  EXPECT_EQ(measured({kNoise, kNoise, kNoise, kNoise}, 2).margin, margin(45, 31, 45, 57, Source::estimated));
}

TEST(WindowShadowTest, OneClearSideAloneDoesNotRuleAShadowOut) {
  EXPECT_EQ(measured({0, kNoise, kNoise, kNoise}).margin, margin(0, 14, 20, 25, Source::estimated));
  EXPECT_EQ(measured({0, kNoise, kNoise, 0}).margin, WindowShadowMargin()) << "two do";
}

TEST(WindowShadowTest, TheShareIsOfTheSmallerSide) {
  const QRectF frame(200, 150, 400, 300);
  const Shadows noise{kNoise, kNoise, kNoise, kNoise};
  EXPECT_EQ(measured(screen(1000, 600, frame, noise), frame).margin, margin(15, 10, 15, 19, Source::estimated));
  const QRectF upright(150, 200, 300, 400);
  EXPECT_EQ(measured(screen(600, 1000, upright, noise), upright).margin, margin(15, 10, 15, 19, Source::estimated));
}

TEST(WindowShadowTest, AFrameThatFillsThePictureHasNoMargins) {
  const plain::Gray gray(400, 300, 180);
  const Measurement found = measured(gray, QRectF(0, 0, 400, 300), 2);
  EXPECT_EQ(found.sides, (std::array{kUnreadable, kUnreadable, kUnreadable, kUnreadable}));
  EXPECT_EQ(found.margin, WindowShadowMargin());
}

TEST(WindowShadowTest, AMarginEndsWithThePicture) {
  const QRectF frame(5, 7, 386, 384);
  const plain::Gray gray = screen(400, 400, frame, {kNoise, kNoise, kNoise, kNoise});
  EXPECT_EQ(measured(gray, frame, 2).margin, margin(5, 7, 9, 9, Source::estimated));
  const QRectF onlyBelow(0, 0, 400, 393);
  EXPECT_EQ(measured(gray, onlyBelow, 2).margin, margin(0, 0, 0, 7, Source::estimated)) << "one side is enough";
}

TEST(WindowShadowTest, AFrameBelowThirtyTwoPixelsInThePictureIsNotMeasured) {
  const plain::Gray gray(400, 400, 180);
  const Measurement narrow = measured(gray, QRectF(100, 100, 31, 200));
  EXPECT_EQ(narrow.sides, (std::array{kUnreadable, kUnreadable, kUnreadable, kUnreadable})) << "nothing is read";
  EXPECT_EQ(measured(gray, QRectF(100, 100, 200, 31)).sides[top], kUnreadable);
  EXPECT_EQ(measured(gray, QRectF(100, 100, 32, 200)).sides[left], kClear);
  EXPECT_EQ(measured(gray, QRectF(100, 100, 200, 32)).sides[top], kClear);
  EXPECT_EQ(measured(gray, QRectF(-100, 100, 131, 200)).sides[right], kUnreadable) << "31 are in the picture";
  EXPECT_EQ(measured(gray, QRectF(-100, 100, 132, 200)).sides[right], kClear);
  EXPECT_EQ(measured(gray, QRectF(500, 500, 100, 100)).margin, WindowShadowMargin());
}

TEST(WindowShadowTest, AFrameGrowsToWholePixels) {
  const plain::Gray gray = screen(800, 800, kFrame, {30, 20, 30, 40});
  EXPECT_EQ(measured(gray, QRectF(200.4, 200.4, 399.2, 399.2)).margin, measured(gray, kFrame).margin);
}

TEST(WindowShadowTest, ASideWithLessThanFourteenPixelsOfRoomIsUnreadable) {
  // Of 14 to 33 pixels there is a profile, but too short a one.
  for (const int64_t room : {13, 14, 33, 34}) {
    const plain::Gray gray(400, 400, 180);
    const auto found = reading(gray, left, QRectF(static_cast<double>(room), 100, 200, 200));
    EXPECT_EQ(found, room < 34 ? kUnreadable : kClear) << room;
  }
}

TEST(WindowShadowTest, AShortSideIsUnreadable) {
  const plain::Gray gray(400, 400, 180);
  EXPECT_EQ(reading(gray, left, QRectF(100, 100, 200, 28)), kUnreadable);
  EXPECT_EQ(reading(gray, left, QRectF(100, 100, 200, 29)), kClear);
}

/// The left side's reading where it is this dark at each distance, and too busy to be read from one distance on. The
/// picture's smaller side sets the first depth.
SideReading leftReading(int64_t room, int64_t smallerSide, const std::function<int(int64_t)>& dark, int64_t busyFrom) {
  plain::Gray gray(std::max(room + 200, smallerSide), smallerSide, 220);
  for (int64_t distance = 0; distance < room; ++distance) {
    const int busy = distance < busyFrom ? 0 : static_cast<int>(distance * 57 % 101);
    pictures::fill(gray, room - 1 - distance, 0, 1, gray.height, 220 - dark(distance) - busy);
  }
  return reading(gray, left, QRectF(static_cast<double>(room), 20, 150, static_cast<double>(smallerSide) - 40));
}
/// A shadow that reaches so far.
std::function<int(int64_t)> dark(int reach) {
  return [reach](int64_t distance) { return darkness(reach, distance); };
}
/// Nothing but the two pixels beside the window.
std::function<int(int64_t)> darkBeside(int by) {
  return [by](int64_t distance) { return distance < 2 ? by : 0; };
}

TEST(WindowShadowTest, AShadowThatEndsWellInsideTheSampledDepthIsTaken) {
  // Up to 0.4 of the depth, which is 0.15 of the smaller side and 60 to 320. Beyond, a deeper look finds it busy.
  for (const auto& [smallerSide, depth] : std::vector<std::pair<int64_t, int>>{
           {100, 60}, {400, 60}, {405, 61}, {410, 62}, {430, 65}, {500, 75}, {2130, 320}, {2200, 320}}) {
    const int most = 4 * depth / 10;
    EXPECT_EQ(leftReading(1000, smallerSide, dark(most), depth), shadow(most)) << smallerSide;
    EXPECT_EQ(leftReading(1000, smallerSide, dark(most + 1), depth), kUnreadable) << smallerSide;
    EXPECT_EQ(leftReading(1000, smallerSide, dark(most + 1), 1000), shadow(most + 1)) << smallerSide;
  }
}

TEST(WindowShadowTest, AnEndFartherOutIsSeenAtTwiceTheDepth) {
  EXPECT_EQ(leftReading(600, 300, dark(30), 120), shadow(30));
}

TEST(WindowShadowTest, AWindowDarkBesideWithoutAnEndIsLookedAtAgain) {
  EXPECT_EQ(leftReading(600, 300, darkBeside(2), 60), kClear);
  EXPECT_EQ(leftReading(600, 300, darkBeside(3), 60), kUnreadable);
  EXPECT_EQ(leftReading(600, 300, darkBeside(3), 120), kUnreadable);
  EXPECT_EQ(leftReading(600, 300, darkBeside(3), 240), kClear) << "there are three looks";
  EXPECT_EQ(leftReading(60, 300, darkBeside(3), 60), kClear) << "there is no more room";
  EXPECT_EQ(leftReading(100, 300, darkBeside(3), 60), kUnreadable);
  EXPECT_EQ(leftReading(100, 300, darkBeside(3), 100), kClear) << "the room was seen";
}

TEST(WindowShadowTest, TheThirdLookIsTakenAsItIs) {
  // Even, then falling off up to 125: beyond what is seen at a depth of 120, and not well inside 240.
  const auto far = [](int64_t distance) { return (distance < 2 ? 6 : 0) + std::min(darkness(125, distance), 21); };
  EXPECT_EQ(leftReading(900, 300, far, 240), shadow(125));
}

TEST(WindowShadowTest, AShadowInANarrowRoomIsTakenAsItIs) {
  // The farthest end that a profile can show is 19 samples from its own: none ever counts as clipped.
  EXPECT_EQ(leftReading(60, 300, dark(25), 60), shadow(25));
  EXPECT_EQ(leftReading(70, 300, dark(29), 70), shadow(29)) << "not within 0.4 of 70";
  EXPECT_EQ(leftReading(40, 300, dark(17), 40).isClipped, false);
}

/// What every frame of random screens gives, and how often which.
TEST(WindowShadowTest, HundredsOfRandomWindowsAreMeasuredByThePlainRules) {
  int sources[3] = {0, 0, 0};
  int kinds[3] = {0, 0, 0};
  for (uint32_t seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    plain::Gray gray(random.between(200, 700), random.between(200, 600), random.between(120, 240));
    const auto w = static_cast<int>(gray.width);
    const auto h = static_cast<int>(gray.height);
    const int width = random.between(40, w - 40);
    const int height = random.between(40, h - 40);
    const int x = random.between(-20, w - width + 20);
    const int y = random.between(-20, h - height + 20);
    for (int layer = random.upTo(2); layer > 0; --layer) random.shadow(gray, x, y, width, height);
    pictures::fill(gray, x, y, width, height, 250);
    if (random.upTo(2) == 0) random.window(gray, false);
    if (random.upTo(1) == 0) random.roughen(gray, random.between(1, 20));
    const double part = random.upTo(3) / 4.0;
    const QRectF frame(x + part, y - part, width, height);
    const auto scale = random.upTo(1) == 0 ? std::optional<double>(random.between(1, 3)) : std::nullopt;
    const Measurement found = measured(gray, frame, scale);
    ++sources[static_cast<int>(found.margin.source)];
    const QRectF inside = QRectF(frame.toAlignedRect() & QRect(0, 0, w, h));
    if (inside.width() < 32 || inside.height() < 32) continue;
    for (const Side side : kSides) {
      EXPECT_EQ(reading(gray, side, inside), found.sides[side]);
      ++kinds[static_cast<int>(found.sides[side].kind)];
    }
  }
  for (const int count : sources) EXPECT_GT(count, 20);
  for (const int count : kinds) EXPECT_GT(count, 100);
}

TEST(WindowShadowTest, EveryFrameGetsItsMarginsInOrder) {
  const QImage image = pictures::image(screen(800, 800, kFrame, {30, 20, 30, 40}));
  EXPECT_TRUE(margins({}, image, 2).empty());
  const auto found = margins({QRectF(0, 0, 800, 800), kFrame}, image, 2);
  EXPECT_EQ(found, (std::vector<WindowShadowMargin>{{}, margin(45, 31, 45, 57, Source::measured)}));
}

TEST(WindowShadowTest, APictureTooSmallForALookGivesNone) {
  EXPECT_EQ(margins({kFrame, kFrame}, QImage(8, 800, QImage::Format_RGB32), 2), std::vector<WindowShadowMargin>(2));
  EXPECT_EQ(margins({kFrame}, QImage(), 2), std::vector<WindowShadowMargin>(1));
}

}  // namespace
}  // namespace WindowShadow
}  // namespace quillmere
