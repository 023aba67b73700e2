#include "controls/Appearance.h"

#include "controls/Contrast.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr QRgb kAccent = 0x2f6fde;

struct Greys {
  QRgb window, base, alternate, button, text, dimmed, link, visited;
};
constexpr Greys kLight{0xf4f4f6, 0xffffff, 0xf8f8fa, 0xfafafb, 0x1c1d20, 0x73767d, 0x1d5bbf, 0x7a3fa8};
constexpr Greys kDark{0x242528, 0x1b1c1e, 0x212225, 0x323337, 0xf2f2f4, 0x92959d, 0x86b4ff, 0xcba6f0};
// What is not to be used is the one thing that may be hard to see.
constexpr Greys kBlackOnWhite{0xffffff, 0xffffff, 0xffffff, 0xffffff, 0x000000, 0x6b6b6b, 0x0a3f9c, 0x5b1f8a};
constexpr Greys kWhiteOnBlack{0x000000, 0x000000, 0x000000, 0x000000, 0xffffff, 0x9a9a9a, 0xa8c8ff, 0xdcc0ff};

bool isDark(const QPalette& palette) {
  return Theme(palette).isDark;
}

QPalette paletteOf(const Greys& greys) {
  QPalette palette(QColor(greys.button), QColor(greys.window));  // also sets the shades that frames are drawn in
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, QColor(greys.text));
  }
  palette.setColor(QPalette::Base, QColor(greys.base));
  palette.setColor(QPalette::AlternateBase, QColor(greys.alternate));
  palette.setColor(QPalette::ToolTipBase, QColor(greys.button));
  palette.setColor(QPalette::Link, QColor(greys.link));
  palette.setColor(QPalette::LinkVisited, QColor(greys.visited));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(greys.dimmed));
  }
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(greys.window));
  palette.setColor(QPalette::PlaceholderText,
                   standingOut(QColor(greys.dimmed), QColor(greys.base), kTextContrast, QColor(greys.text)));
  return palette;
}

QPalette groundsFor(const Appearance& appearance, const std::optional<QPalette>& themed) {
  using Scheme = Appearance::Scheme;
  const bool wantsDark =
      appearance.scheme == Scheme::unknown ? themed && isDark(*themed) : appearance.scheme == Scheme::dark;
  const bool isHighContrast = appearance.isHighContrast || (themed && Theme(*themed).isHighContrast);
  if (isHighContrast) return paletteOf(wantsDark ? kWhiteOnBlack : kBlackOnWhite);
  if (themed && isDark(*themed) == wantsDark) return *themed;
  return paletteOf(wantsDark ? kDark : kLight);
}

}  // namespace

Appearance merged(const Appearance& first, const Appearance& second) {
  Appearance both = first;
  if (both.scheme == Appearance::Scheme::unknown) both.scheme = second.scheme;
  if (!both.accent) both.accent = second.accent;
  if (!both.font) both.font = second.font;
  both.isHighContrast = first.isHighContrast || second.isHighContrast;
  both.isMotionReduced = first.isMotionReduced || second.isMotionReduced;
  return both;
}

QPalette paletteFor(const Appearance& appearance, const std::optional<QPalette>& themed) {
  QPalette palette = groundsFor(appearance, themed);
  const QColor themedAccent = themed ? themed->color(QPalette::Active, QPalette::Highlight) : QColor(kAccent);
  palette.setColor(QPalette::Highlight, appearance.accent.value_or(themedAccent));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    const QColor dimmed = palette.color(QPalette::Disabled, role);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    palette.setColor(QPalette::Disabled, role,
                     standingOut(dimmed, ground, kMarkContrast, palette.color(QPalette::Active, role)));
  }
  // Qt's own controls write on the accent too, and make no choice of their own.
  const Theme theme(palette);
  palette.setColor(QPalette::Highlight, theme.accent);
  palette.setColor(QPalette::HighlightedText, theme.onAccent);
  return palette;
}

}  // namespace quillmere
