#pragma once

#include <QtGui/QAccessible>
#include <QtWidgets/QWidget>

namespace quillmere {

/// Gives a widget that has nothing to operate another role for assistive technology, such as a heading or a picture. A
/// label's text stays its name. Without a role it is nothing to assistive technology.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace quillmere
