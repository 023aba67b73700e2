#pragma once

#include <QtCore/QStringList>

#include "controls/Appearance.h"

namespace quillmere::testing {

/// The look that the arguments of a program that draws pictures ask for: --dark, --contrast, --accent COLOUR,
/// --font NAME SIZE. Everything is at its place at once.
inline Appearance pictureAppearance(const QStringList& arguments) {
  Appearance appearance;
  const bool isDark = arguments.contains(QStringLiteral("--dark"));
  appearance.scheme = isDark ? Appearance::Scheme::dark : Appearance::Scheme::light;
  appearance.isHighContrast = arguments.contains(QStringLiteral("--contrast"));
  appearance.isMotionReduced = true;
  appearance.font = QFont(QStringLiteral("Inter"), 10);
  if (const qsizetype at = arguments.indexOf(QStringLiteral("--font")); at > 0) {
    appearance.font = QFont(arguments.value(at + 1), arguments.value(at + 2).toInt());
  }
  if (const qsizetype at = arguments.indexOf(QStringLiteral("--accent")); at > 0) {
    appearance.accent = QColor(arguments.value(at + 1));
  }
  return appearance;
}

}  // namespace quillmere::testing
