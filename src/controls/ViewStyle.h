#pragma once

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How lists, their headers, frames and groups look.
namespace ViewStyle {

/// The ground of a row, or of its part in one column.
void paintRow(const QStyleOptionViewItem& row, QPainter& painter);
void paintHeader(const QStyleOption& header, QPainter& painter);
/// Which way a column is sorted.
void paintSortArrow(const QStyleOptionHeader& header, QPainter& painter);
/// Around a list.
void paintFrame(const QStyleOption& frame, QPainter& painter);
inline constexpr int kFrame = 4;  ///< so thick that a list's corners stay inside

void paintGroup(const QStyleOptionGroupBox& group, QPainter& painter);
QRect groupPart(const QStyleOptionGroupBox& group, QStyle::SubControl part);

}  // namespace ViewStyle
}  // namespace quillmere
