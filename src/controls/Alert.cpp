#include "controls/Alert.h"

#include <QtWidgets/QMessageBox>

namespace quillmere {

void showAlert(QWidget* parent, const QString& title, const QString& message) {
  QWidget* above = parent && parent->isVisible() ? parent : nullptr;
  QMessageBox box(QMessageBox::Warning, title, title, QMessageBox::Ok, above);
  box.setInformativeText(message);
  box.exec();
}

}  // namespace quillmere
