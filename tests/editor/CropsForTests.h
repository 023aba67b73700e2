#pragma once

#include <QtCore/QRect>
#include <ostream>

#include "editor/WindowCandidate.h"
#include "support/Records.h"

inline void PrintTo(const QRect& rect, std::ostream* out) {
  *out << rect.x() << ", " << rect.y() << " of " << rect.width() << " by " << rect.height();
}

namespace quillmere::testing {

using ShadowSource = WindowShadowMargin::Source;

inline WindowShadowMargin shadow(double left, double top, double right, double bottom,
                                 ShadowSource source = ShadowSource::measured) {
  return {left, top, right, bottom, source};
}

/// Of the id `uuid(number)`.
inline WindowCandidate candidate(int number, QRect rect, const WindowShadowMargin& shadow) {
  return {uuid(number), number, rect, shadow};
}

}  // namespace quillmere::testing
