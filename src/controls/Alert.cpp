#include "controls/Alert.h"

#include <QtWidgets/QMessageBox>

namespace quillmere {

void showAlert(QWidget* parent, const QString& title, const QString& message) {
  QMessageBox box(QMessageBox::Warning, title, title, QMessageBox::Ok, parent);
  box.setInformativeText(message);
  box.exec();
}

}  // namespace quillmere
