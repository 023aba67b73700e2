#include "controls/Theme.h"

#include "controls/Contrast.h"

namespace quillmere {
namespace {

constexpr int kHalf = 128;
// Of black on white 21 is left; a little less for themes that stop just short of it.
constexpr double kHighContrast = 20;

QColor withAlpha(QColor color, float alpha) {
  color.setAlphaF(alpha);
  return color;
}

void setLight(Theme& theme) {
  theme.card = QColor(0xfcfcfd);
  theme.text = QColor(0x1c1d20);
  theme.secondaryText = QColor(0x595c63);
  theme.disabledText = QColor(0x73767d);
  theme.hairline = withAlpha(Qt::black, 0.11F);
  theme.field = Qt::white;
  theme.fieldBorder = QColor(0x82858d);
  theme.fill = withAlpha(QColor(0x14161c), 0.055F);
  theme.fillHover = withAlpha(QColor(0x14161c), 0.09F);
  theme.fillPressed = withAlpha(QColor(0x14161c), 0.125F);
  theme.danger = QColor(0xb0241c);
  theme.warning = QColor(0x855000);
  theme.warningGround = withAlpha(QColor(0xe08a00), 0.14F);
}

void setDark(Theme& theme) {
  theme.card = QColor(0x2a2b2e);
  theme.text = QColor(0xf2f2f4);
  theme.secondaryText = QColor(0xb9bbc1);
  theme.disabledText = QColor(0x92959d);
  theme.hairline = withAlpha(Qt::white, 0.12F);
  theme.field = QColor(0x1d1e20);
  theme.fieldBorder = QColor(0x84878f);
  theme.fill = withAlpha(Qt::white, 0.07F);
  theme.fillHover = withAlpha(Qt::white, 0.10F);
  theme.fillPressed = withAlpha(Qt::white, 0.13F);
  theme.danger = QColor(0xffa59e);
  theme.warning = QColor(0xf2b84b);
  theme.warningGround = withAlpha(theme.warning, 0.14F);
}

void raiseContrast(Theme& theme) {
  const bool isDark = theme.isDark;
  theme.card = isDark ? Qt::black : Qt::white;
  theme.text = isDark ? Qt::white : Qt::black;
  theme.secondaryText = isDark ? QColor(0xe2e2e4) : QColor(0x2c2c2e);
  theme.disabledText = isDark ? QColor(0x9a9a9a) : QColor(0x6b6b6b);
  theme.hairline = withAlpha(theme.text, 0.6F);
  theme.field = theme.card;
  theme.fieldBorder = theme.text;
  theme.danger = isDark ? QColor(0xffb4ae) : QColor(0x8c1007);
  theme.warning = isDark ? QColor(0xffd27a) : QColor(0x5e3800);
}

/// White text where the accent is dark enough for it, or nearly so; else black.
void setAccent(Theme& theme, const QColor& told) {
  constexpr double kNearlyEnough = 2.9;
  const bool isWhite = contrastRatio(told, Qt::white) >= kNearlyEnough;
  theme.onAccent = isWhite ? Qt::white : Qt::black;
  theme.accent = standingOut(told, theme.onAccent, kTextContrast, isWhite ? Qt::black : Qt::white);
  theme.accentHover = mixed(theme.accent, isWhite ? Qt::black : Qt::white, 0.1);
  theme.accentPressed = mixed(theme.accent, Qt::black, isWhite ? 0.2 : 0.08);
}

/// The pressed ground is the one that the accent stands out from least.
QColor ringIn(const Theme& theme, const QColor& told, const QColor& window) {
  if (theme.isHighContrast) return theme.text;
  const QColor onCard = standingOut(told, painted(theme.fillPressed, theme.card), kMarkContrast, theme.text);
  return standingOut(onCard, painted(theme.fillPressed, window), kMarkContrast, theme.text);
}

}  // namespace

Theme::Theme(const QPalette& palette) {
  // Of the active state: a control that is dimmed or behind is still of the same desktop.
  const QColor window = palette.color(QPalette::Active, QPalette::Window);
  isDark = window.lightness() < kHalf;
  isHighContrast = contrastRatio(window, palette.color(QPalette::Active, QPalette::ButtonText)) >= kHighContrast;
  isDark ? setDark(*this) : setLight(*this);
  if (isHighContrast) raiseContrast(*this);
  const QColor told = palette.color(QPalette::Active, QPalette::Highlight);
  setAccent(*this, told);
  // A window of the desktop's own colour may be nearer to it than ours.
  fieldBorder = standingOut(fieldBorder, window, kMarkContrast, text);
  focusRing = ringIn(*this, told, window);
}

QColor Theme::color(Ink ink) const {
  switch (ink) {
    case Ink::text:
      return text;
    case Ink::secondary:
      return secondaryText;
    case Ink::warning:
      return warning;
    case Ink::danger:
      return danger;
  }
  return text;
}

QFont scaled(QFont font, qreal factor, QFont::Weight weight) {
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * factor);
  } else {
    font.setPixelSize(qRound(font.pixelSize() * factor));
  }
  font.setWeight(weight);
  return font;
}

QFont fileNameFont(QFont font) {
  font.setStyleStrategy(QFont::PreferNoShaping);
  return font;
}

}  // namespace quillmere
