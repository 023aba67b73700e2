#include "controls/ModalDialog.h"

namespace quillmere {

int runModal(QDialog& dialog) {
  QWidget* owner = dialog.parentWidget();
  if (!owner) return dialog.exec();
  dialog.setWindowModality(Qt::WindowModal);
  // Told before an owner takes its children with it, and this one is not its to delete.
  const auto leaving = QObject::connect(owner, &QObject::destroyed, &dialog, [&dialog] {
    dialog.setParent(nullptr);
    dialog.reject();
  });
  const int result = dialog.exec();
  QObject::disconnect(leaving);
  return result;
}

}  // namespace quillmere
