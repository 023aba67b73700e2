#pragma once

#include <QtWidgets/QStyleOption>

namespace quillmere {

/// How check boxes and radio buttons look.
namespace MarkStyle {

inline constexpr int kSide = 18;

void paintCheckBox(const QStyleOption& box, QPainter& painter);
void paintRadioButton(const QStyleOption& button, QPainter& painter);

}  // namespace MarkStyle
}  // namespace quillmere
