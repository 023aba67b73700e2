#include "controls/Alert.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>

namespace quillmere {

void showAlert(QWidget* parent, const QString& title, const QString& message) {
  QWidget* above = parent && parent->isVisible() ? parent : nullptr;
  QMessageBox box(QMessageBox::Warning, title, title, QMessageBox::Ok, above);
  box.setInformativeText(message);
  // File names stand in them.
  for (QLabel* label : box.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  box.exec();
}

}  // namespace quillmere
