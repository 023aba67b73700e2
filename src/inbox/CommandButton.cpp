#include "inbox/CommandButton.h"

#include "controls/ActionButton.h"

namespace quillmere {

void showCommand(ActionButton& button, const ScreenshotAction& action) {
  button.setSymbol(action.symbol);
  button.setText(action.title);
  button.setToolTip(action.help);
  button.setEnabled(action.isEnabled);
}

}  // namespace quillmere
