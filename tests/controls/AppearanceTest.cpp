#include "controls/Appearance.h"

#include <gtest/gtest.h>

#include "controls/Contrast.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

Appearance of(Scheme scheme) {
  Appearance appearance;
  appearance.scheme = scheme;
  return appearance;
}

/// As a theme of the desktop has it for Qt.
QPalette themed(const QColor& window, const QColor& accent) {
  QPalette palette(window, window);
  palette.setColor(QPalette::Highlight, accent);
  return palette;
}
const QColor kNight(0x101830);
const QColor kPaper(0xf0e8d8);
const QColor kViolet(0x8030a0);

QColor window(const QPalette& palette) {
  return palette.color(QPalette::Window);
}

TEST(AppearanceTest, OfTwoThatTellTheFirstCountsAndTheSecondFillsIn) {
  Appearance first = of(Scheme::dark);
  Appearance second = of(Scheme::light);
  second.accent = kViolet;
  second.font = QFont(QStringLiteral("DejaVu Sans"), 12);
  const Appearance both = merged(first, second);
  EXPECT_EQ(both.scheme, Scheme::dark);
  EXPECT_EQ(both.accent, kViolet);
  EXPECT_EQ(both.font, second.font);
  EXPECT_EQ(merged({}, second), second);
  first.accent = kNight;
  EXPECT_EQ(merged(first, second).accent, kNight);
}

TEST(AppearanceTest, WhoeverAsksForContrastOrLessMotionGetsIt) {
  Appearance wanting;
  wanting.isHighContrast = wanting.isMotionReduced = true;
  EXPECT_EQ(merged(wanting, {}), wanting);
  EXPECT_EQ(merged({}, wanting), wanting);
}

TEST(AppearanceTest, WithoutAWordFromTheDesktopItIsLight) {
  EXPECT_FALSE(Theme(paletteFor({}, std::nullopt)).isDark);
  EXPECT_EQ(paletteFor({}, std::nullopt), paletteFor(of(Scheme::light), std::nullopt));
}

TEST(AppearanceTest, ThenTheDesktopsThemeForQtStands) {
  const QPalette palette = paletteFor({}, themed(kNight, kViolet));
  EXPECT_EQ(window(palette), kNight);
  EXPECT_EQ(Theme(palette).accent, kViolet);
}

TEST(AppearanceTest, AThemeThatAgreesStandsWithTheAccentThatWasTold) {
  Appearance appearance = of(Scheme::dark);
  appearance.accent = QColor(Qt::yellow);
  const QPalette palette = paletteFor(appearance, themed(kNight, kViolet));
  EXPECT_EQ(window(palette), kNight);
  EXPECT_EQ(palette.color(QPalette::Highlight), QColor(Qt::yellow));
  EXPECT_EQ(palette.color(QPalette::HighlightedText), QColor(Qt::black));
}

TEST(AppearanceTest, AThemeThatIsOutOfDateDoesNot) {
  EXPECT_EQ(window(paletteFor(of(Scheme::light), themed(kNight, kViolet))),
            window(paletteFor(of(Scheme::light), std::nullopt)));
  EXPECT_EQ(window(paletteFor(of(Scheme::dark), themed(kPaper, kViolet))),
            window(paletteFor(of(Scheme::dark), std::nullopt)));
}

TEST(AppearanceTest, HigherContrastIsBlackAndWhiteInAnyTheme) {
  Appearance appearance;
  appearance.isHighContrast = true;
  EXPECT_EQ(window(paletteFor(appearance, std::nullopt)), QColor(Qt::white));
  EXPECT_EQ(window(paletteFor(appearance, themed(kNight, kViolet))), QColor(Qt::black));
  appearance.scheme = Scheme::dark;
  EXPECT_EQ(window(paletteFor(appearance, themed(kPaper, kViolet))), QColor(Qt::black));
}

TEST(AppearanceTest, AThemeOfTheDesktopForHighContrastIsUnderstood) {
  QPalette theme = themed(Qt::black, kViolet);
  theme.setColor(QPalette::ButtonText, Qt::white);
  EXPECT_TRUE(Theme(paletteFor({}, theme)).isHighContrast);
  EXPECT_TRUE(Theme(paletteFor({}, theme)).isDark);
}

TEST(AppearanceTest, AThemeWhoseDimmedTextIsTooFaintGetsItClearer) {
  QPalette theme = themed(kPaper, kViolet);
  theme.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0xd8d0c0));
  const QPalette palette = paletteFor({}, theme);
  EXPECT_GE(contrastRatio(palette.color(QPalette::Disabled, QPalette::WindowText), window(palette)), kMarkContrast);
}

TEST(AppearanceTest, WhatIsDimmedLooksDimmed) {
  for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
    const QPalette palette = paletteFor(of(scheme), std::nullopt);
    EXPECT_LT(contrastRatio(palette.color(QPalette::Disabled, QPalette::WindowText), window(palette)),
              contrastRatio(palette.color(QPalette::Active, QPalette::WindowText), window(palette)) / 2);
  }
}

}  // namespace
}  // namespace quillmere
