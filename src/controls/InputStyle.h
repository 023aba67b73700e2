#pragma once

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How fields, numbers and choices look. Places are from left to right; whoever asks mirrors them.
namespace InputStyle {

void paintField(const QStyleOptionFrame& field, QPainter& painter);
QRect fieldContents(const QStyleOptionFrame& field);

void paintNumber(const QStyleOptionSpinBox& number, QPainter& painter);
QRect numberPart(const QStyleOptionSpinBox& number, QStyle::SubControl part);

void paintChoice(const QStyleOptionComboBox& choice, QPainter& painter);
QRect choicePart(const QStyleOptionComboBox& choice, QStyle::SubControl part);

/// With what stands around a text of this size.
QSize inputSize(QStyle::ContentsType type, const QSize& text);

}  // namespace InputStyle
}  // namespace quillmere
