#pragma once

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How scroll bars, tabs, bars of progress, bars of menus and the lines between panes look.
namespace BarStyle {

inline constexpr int kScrollBar = 12;

void paintScrollBar(const QStyleOptionSlider& bar, QPainter& painter);
/// It has a handle and the room in which that moves, and no buttons.
QRect scrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part);

void paintTab(const QStyleOptionTab& tab, QPainter& painter);
QSize tabSize(const QSize& contents);

void paintProgress(const QStyleOptionProgressBar& bar, QPainter& painter);

/// Around a bar's menus: with the first title's margin its text stands at 12 points, as what is below it does.
inline constexpr int kMenuBarMargin = 4;
void paintMenuTitle(const QStyleOptionMenuItem& title, QPainter& painter, bool showsMnemonics);
QSize menuTitleSize(const QSize& text);
/// Of the whole bar, with the line that parts it from the window.
void paintMenuBar(const QStyleOption& bar, QPainter& painter);

/// One line, however wide the handle is.
void paintSplitter(const QStyleOption& handle, QPainter& painter);

}  // namespace BarStyle
}  // namespace quillmere
