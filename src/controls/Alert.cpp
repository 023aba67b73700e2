#include "controls/Alert.h"

#include <QtWidgets/QMessageBox>

#include "controls/ModalDialog.h"
#include "controls/PlainText.h"

namespace quillmere {

void showAlert(QWidget* parent, const QString& title, const QString& message) {
  QWidget* above = parent && parent->isVisible() ? parent : nullptr;
  QMessageBox box(QMessageBox::Warning, title, {}, QMessageBox::Ok, above);
  setPlainTexts(box, title, message);
  runModal(box);
}

}  // namespace quillmere
