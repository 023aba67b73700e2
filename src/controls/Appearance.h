#pragma once

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <optional>

namespace quillmere {

/// How the desktop wants its programs to look, as far as it tells.
struct Appearance {
  enum class Scheme { unknown, light, dark };
  Scheme scheme = Scheme::unknown;
  std::optional<QColor> accent;
  bool isHighContrast = false;
  bool isMotionReduced = false;
  std::optional<QFont> font;  ///< of its windows and menus

  bool operator==(const Appearance&) const = default;
};

/// What the first tells, and of the rest what the second does.
Appearance merged(const Appearance& first, const Appearance& second);

/// The colours of all windows. `themed` is what the desktop's own theme for Qt says, where it has one: that stands as
/// far as it agrees with the appearance. Otherwise the colours are the program's own.
QPalette paletteFor(const Appearance& appearance, const std::optional<QPalette>& themed);

}  // namespace quillmere
