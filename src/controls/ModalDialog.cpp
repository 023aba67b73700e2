#include "controls/ModalDialog.h"

namespace quillmere {

int runModal(QDialog& dialog) {
  if (dialog.parentWidget()) dialog.setWindowModality(Qt::WindowModal);
  return dialog.exec();
}

}  // namespace quillmere
