#pragma once

#include <QtWidgets/QPushButton>

namespace quillmere {

/// Has assistive technology tell which key presses the button from anywhere in its window. The window itself sees to
/// that: Qt knows the keys of its own shortcuts alone.
void setAccessibleKey(QPushButton& button, Qt::Key key);

/// Has assistive technology open the menu of the button without waiting until that is closed, as Qt would have it.
void setAccessibleMenu(QPushButton& button);

}  // namespace quillmere
