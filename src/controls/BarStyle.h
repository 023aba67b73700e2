#pragma once

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How scroll bars, tabs and bars of progress look.
namespace BarStyle {

inline constexpr int kScrollBar = 12;

void paintScrollBar(const QStyleOptionSlider& bar, QPainter& painter);
/// It has a handle and the room in which that moves, and no buttons.
QRect scrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part);

void paintTab(const QStyleOptionTab& tab, QPainter& painter);
QSize tabSize(const QSize& contents);

void paintProgress(const QStyleOptionProgressBar& bar, QPainter& painter);

}  // namespace BarStyle
}  // namespace quillmere
