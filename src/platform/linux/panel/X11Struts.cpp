#include "platform/linux/panel/X11Struts.h"

#include <qpa/qplatformscreen.h>
#include <QtGui/QScreen>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/linux/panel/X11Display.h"

namespace quillmere::X11Struts {
namespace {

enum Field : size_t { left, right, top, bottom, leftStart, rightStart = 6, topStart = 8, bottomStart = 10 };

/// The plain form of old docks holds the first four numbers alone: each edge in its whole length.
Strut strut(const std::vector<uint32_t>& numbers) {
  constexpr int kEnd = std::numeric_limits<int>::max();
  Strut result{0, 0, 0, 0, 0, kEnd, 0, kEnd, 0, kEnd, 0, kEnd};
  for (size_t i = 0; i < std::min(numbers.size(), result.size()); ++i) {
    result[i] = static_cast<int>(std::min<uint32_t>(numbers[i], kEnd));
  }
  return result;
}

std::vector<Strut> strutsOf(X11Display& display) {
  const std::vector<xcb_window_t> windows = display.property(display.root(), "_NET_CLIENT_LIST");
  const auto partial = display.properties(windows, "_NET_WM_STRUT_PARTIAL");
  const auto plain = display.properties(windows, "_NET_WM_STRUT");
  std::vector<Strut> result;
  for (size_t i = 0; i < windows.size(); ++i) {
    const auto& numbers = partial[i].empty() ? plain[i] : partial[i];
    if (numbers.size() >= leftStart) result.push_back(strut(numbers));
  }
  return result;
}

/// What a desktop tells whose docks are no windows: a rectangle for each screen.
QRect withinWorkAreas(X11Display& display, const QRect& screen) {
  const auto desktop = display.number(display.root(), "_NET_CURRENT_DESKTOP");
  const auto numbers = display.property(display.root(), "_GTK_WORKAREAS_D" + std::to_string(desktop));
  QRect result = screen;
  for (size_t i = 0; i + 4 <= numbers.size(); i += 4) {
    const auto number = [&](size_t field) { return static_cast<int>(numbers[i + field]); };
    const QRect common = result & QRect(number(0), number(1), number(2), number(3));
    if (!common.isEmpty()) result = common;
  }
  return result;
}

}  // namespace

QRect without(const std::vector<Strut>& struts, QRect screen, const QSize& display) {
  const QRect whole = screen;
  // The number of lines that a strut takes from this screen, if it runs along it and is its own.
  const auto taken = [](int reserved, int size) { return reserved * 2 <= size ? std::max(reserved, 0) : 0; };
  for (const Strut& strut : struts) {
    const auto runsAlong = [&](Field start, int first, int last) {
      return strut[start] <= last && strut[start + 1] >= first;
    };
    if (strut[left] > 0 && runsAlong(leftStart, whole.top(), whole.bottom())) {
      screen.setLeft(std::max(screen.left(), whole.left() + taken(strut[left] - whole.left(), whole.width())));
    }
    if (strut[right] > 0 && runsAlong(rightStart, whole.top(), whole.bottom())) {
      const int beside = display.width() - 1 - whole.right();
      screen.setRight(std::min(screen.right(), whole.right() - taken(strut[right] - beside, whole.width())));
    }
    if (strut[top] > 0 && runsAlong(topStart, whole.left(), whole.right())) {
      screen.setTop(std::max(screen.top(), whole.top() + taken(strut[top] - whole.top(), whole.height())));
    }
    if (strut[bottom] > 0 && runsAlong(bottomStart, whole.left(), whole.right())) {
      const int below = display.height() - 1 - whole.bottom();
      screen.setBottom(std::min(screen.bottom(), whole.bottom() - taken(strut[bottom] - below, whole.height())));
    }
  }
  return screen;
}

QRect availableGeometry(X11Display& display, const QScreen& screen) {
  if (!screen.handle() || screen.virtualSiblings().size() < 2) return screen.availableGeometry();
  const QRect whole = screen.handle()->geometry();
  const QRect free = withinWorkAreas(display, without(strutsOf(display), whole, display.rootSize()));
  // In points a screen keeps its corner.
  const QRect points = screen.geometry();
  const qreal scale = static_cast<qreal>(whole.width()) / points.width();
  const auto inwards = [scale](int pixels) { return static_cast<int>(std::ceil(pixels / scale)); };
  return points.adjusted(inwards(free.left() - whole.left()), inwards(free.top() - whole.top()),
                         -inwards(whole.right() - free.right()), -inwards(whole.bottom() - free.bottom()));
}

}  // namespace quillmere::X11Struts
