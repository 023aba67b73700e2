#include "controls/Theme.h"

#include <gtest/gtest.h>

#include "controls/Appearance.h"
#include "controls/Contrast.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

/// Accents of desktops, the purest colours, greys, and every hue at three strengths.
std::vector<QColor> accents() {
  std::vector<QColor> all{QColor(0x3584e4), QColor(0x2190a4), QColor(0x3a944a), QColor(0xc88800), QColor(0xed5b00),
                          QColor(0xe62d42), QColor(0xd56199), QColor(0x9141ac), QColor(0x6f8396), QColor(0x3daee9),
                          QColor(0xe95420), Qt::black,        Qt::white,        Qt::gray,         Qt::yellow,
                          Qt::blue,         Qt::red,          Qt::green,        Qt::cyan,         Qt::magenta};
  for (int hue = 0; hue < 360; hue += 15) {
    for (const int value : {90, 170, 255}) all.push_back(QColor::fromHsv(hue, 200, value));
  }
  return all;
}

struct Look {
  const char* name;
  Scheme scheme;
  bool isHighContrast;
};
void PrintTo(const Look& look, std::ostream* out) {
  *out << look.name;
}

class EveryLookTest : public ::testing::TestWithParam<Look> {
 protected:
  static Appearance appearance() {
    Appearance appearance;
    appearance.scheme = GetParam().scheme;
    appearance.isHighContrast = GetParam().isHighContrast;
    return appearance;
  }
  const QPalette palette = paletteFor(appearance(), std::nullopt);
  const Theme theme{palette};

  std::vector<QColor> grounds() const {
    std::vector<QColor> all;
    for (const QColor& under : {theme.card, palette.color(QPalette::Window), palette.color(QPalette::Base)}) {
      all.push_back(under);
      for (const QColor& over : {theme.field, theme.fill, theme.fillHover, theme.fillPressed, theme.warningGround}) {
        all.push_back(painted(over, under));
      }
    }
    return all;
  }
};

INSTANTIATE_TEST_SUITE_P(Looks, EveryLookTest,
                         ::testing::Values(Look{"light", Scheme::light, false}, Look{"dark", Scheme::dark, false},
                                           Look{"blackOnWhite", Scheme::light, true},
                                           Look{"whiteOnBlack", Scheme::dark, true}),
                         [](const auto& look) { return look.param.name; });

TEST_P(EveryLookTest, IsWhatWasWanted) {
  EXPECT_EQ(theme.isDark, GetParam().scheme == Scheme::dark);
  EXPECT_EQ(theme.isHighContrast, GetParam().isHighContrast);
}

TEST_P(EveryLookTest, TextsCanBeReadOnEveryGround) {
  for (const QColor& ground : grounds()) {
    for (const Ink ink : {Ink::text, Ink::secondary, Ink::warning, Ink::danger}) {
      EXPECT_GE(contrastRatio(theme.color(ink), ground), kTextContrast)
          << theme.color(ink).name().toStdString() << " on " << ground.name().toStdString();
    }
  }
}

TEST_P(EveryLookTest, QtsOwnControlsCanBeRead) {
  using P = QPalette;
  const std::pair<P::ColorRole, P::ColorRole> pairs[]{{P::WindowText, P::Window},
                                                      {P::Text, P::Base},
                                                      {P::Text, P::AlternateBase},
                                                      {P::ButtonText, P::Button},
                                                      {P::Link, P::Base},
                                                      {P::LinkVisited, P::Base},
                                                      {P::Link, P::Window},
                                                      {P::ToolTipText, P::ToolTipBase},
                                                      {P::PlaceholderText, P::Base},
                                                      {P::HighlightedText, P::Highlight}};
  for (const auto& [text, ground] : pairs) {
    EXPECT_GE(contrastRatio(palette.color(text), palette.color(ground)), kTextContrast) << text << " on " << ground;
  }
}

TEST_P(EveryLookTest, AnyAccentCarriesItsTextAndAVisibleRing) {
  for (const QColor& accent : accents()) {
    Appearance wanted = appearance();
    wanted.accent = accent;
    const Theme accented(paletteFor(wanted, std::nullopt));
    const std::string name = accent.name().toStdString();
    for (const QColor& ground : {accented.accent, accented.accentHover, accented.accentPressed}) {
      EXPECT_GE(contrastRatio(accented.onAccent, ground), kTextContrast)
          << name << " on " << ground.name().toStdString();
    }
    for (const QColor& ground : grounds()) {
      EXPECT_GE(contrastRatio(accented.focusRing, ground), kMarkContrast)
          << name << " on " << ground.name().toStdString();
    }
  }
}

TEST_P(EveryLookTest, EdgesOfFieldsAreSeenOnBothSidesWhateverTheAccent) {
  for (const QColor& accent : accents()) {
    Appearance wanted = appearance();
    wanted.accent = accent;
    const QPalette accented = paletteFor(wanted, std::nullopt);
    const Theme seen(accented);
    for (const QColor& ground : {seen.field, seen.card, accented.color(QPalette::Base),
                                 accented.color(QPalette::Window), painted(seen.fill, seen.card)}) {
      EXPECT_GE(contrastRatio(seen.fieldBorder, ground), kMarkContrast)
          << accent.name().toStdString() << " on " << ground.name().toStdString();
    }
  }
}

TEST_P(EveryLookTest, WhatCannotBeUsedCanStillBeRead) {
  for (const QColor& ground : grounds()) {
    if (ground == painted(theme.fillPressed, theme.card)) continue;  // nothing that cannot be used is pressed
    EXPECT_GE(contrastRatio(theme.disabledText, ground), kMarkContrast) << ground.name().toStdString();
  }
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    for (const auto ground : {QPalette::Window, QPalette::Base, QPalette::Button}) {
      EXPECT_GE(contrastRatio(palette.color(QPalette::Disabled, role), palette.color(QPalette::Active, ground)),
                kMarkContrast)
          << role << " on " << ground;
    }
  }
}

TEST_P(EveryLookTest, IsTheSameWhereAControlIsDimmedOrALabelHasItsOwnColour) {
  QPalette changed = palette;
  changed.setCurrentColorGroup(QPalette::Disabled);
  changed.setColor(QPalette::WindowText, theme.secondaryText);
  changed.setColor(QPalette::Text, theme.secondaryText);
  const Theme seen(changed);
  EXPECT_EQ(seen.isHighContrast, theme.isHighContrast);
  EXPECT_EQ(seen.isDark, theme.isDark);
  EXPECT_EQ(seen.accent, theme.accent);
}

TEST(ThemeTest, TheAccentIsTheDesktopsWhereTextCanBeReadOnIt) {
  Appearance appearance;
  appearance.accent = QColor(0x9141ac);
  EXPECT_EQ(Theme(paletteFor(appearance, std::nullopt)).accent, QColor(0x9141ac));
  EXPECT_EQ(Theme(paletteFor(appearance, std::nullopt)).onAccent, QColor(Qt::white));
  appearance.accent = QColor(Qt::yellow);
  EXPECT_EQ(Theme(paletteFor(appearance, std::nullopt)).accent, QColor(Qt::yellow));
  EXPECT_EQ(Theme(paletteFor(appearance, std::nullopt)).onAccent, QColor(Qt::black));
}

TEST(ThemeTest, HigherContrastHasAnOpaqueCardWithAnEdgeInTheTextsColour) {
  for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
    Appearance appearance;
    appearance.scheme = scheme;
    appearance.isHighContrast = true;
    const Theme theme(paletteFor(appearance, std::nullopt));
    EXPECT_EQ(theme.card.alpha(), 255);
    EXPECT_NEAR(theme.hairline.alphaF(), 0.6, 0.01);
    EXPECT_EQ(QColor(theme.hairline.rgb()), theme.text);
    EXPECT_GE(contrastRatio(theme.text, theme.card), 20);
  }
}

TEST(FileNameFont, ShowsLettersAsTheyAreAndIsElseTheSame) {
  const QFont font(QStringLiteral("Inter"), 13, QFont::DemiBold);
  const QFont plain = fileNameFont(font);
  EXPECT_TRUE(plain.styleStrategy() & QFont::PreferNoShaping);
  EXPECT_EQ(plain.family(), font.family());
  EXPECT_EQ(plain.pointSize(), font.pointSize());
  EXPECT_EQ(plain.weight(), font.weight());
}

}  // namespace
}  // namespace quillmere
