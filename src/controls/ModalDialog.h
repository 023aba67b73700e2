#pragma once

#include <QtWidgets/QDialog>

namespace quillmere {

/// Shows a dialog and waits until it is closed; the result is the dialog's own. The window that it belongs to waits
/// with it and no other: the popup goes on to ask about screenshots while a folder is chosen. One that belongs to no
/// window holds up all of them. When its window goes meanwhile, it is rejected and belongs to none any more.
int runModal(QDialog& dialog);

}  // namespace quillmere
