#pragma once

#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How rows of menus look.
namespace MenuStyle {

void paintItem(const QStyleOptionMenuItem& item, QPainter& painter);
/// `contents` is the text's and the icon's, without its shortcut.
QSize itemSize(const QStyleOptionMenuItem& item, const QSize& contents);

}  // namespace MenuStyle
}  // namespace quillmere
