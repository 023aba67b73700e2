#include "inbox/SelectionTemporaryMenu.h"

namespace quillmere {

SelectionTemporaryMenu::SelectionTemporaryMenu(QWidget* parent) : QMenu(parent) {
  for (const TemporaryDuration duration : kTemporaryDurations) {
    addAction(menuText(duration), this, [this, duration] {
      if (action) action(duration);
    });
  }
}

}  // namespace quillmere
