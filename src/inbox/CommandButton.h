#pragma once

#include "inbox/ScreenshotActionsMenu.h"

namespace quillmere {

class ActionButton;

/// Gives a button a command's symbol, title, help and whether it can be done.
void showCommand(ActionButton& button, const ScreenshotAction& action);

}  // namespace quillmere
