#pragma once

#include <QtCore/QRect>
#include <QtCore/QSize>
#include <array>
#include <vector>

class QScreen;

namespace quillmere {

class X11Display;

/// What the desktop's docks reserve for themselves.
namespace X11Struts {

/// As `_NET_WM_STRUT_PARTIAL` has it: how far in from the left, right, top and bottom of the whole display, then where
/// each begins and ends along its edge; in pixels.
using Strut = std::array<int, 12>;

/// The screen without what the struts take. The edges of the display need not be the screen's: a strut that would take
/// more than half of a screen reserves room on the one that lies before it.
QRect without(const std::vector<Strut>& struts, QRect screen, const QSize& display);

/// In points. Qt's own answer is the whole screen as soon as there are two.
QRect availableGeometry(X11Display& display, const QScreen& screen);

}  // namespace X11Struts
}  // namespace quillmere
