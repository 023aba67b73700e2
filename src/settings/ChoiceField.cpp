#include "settings/ChoiceField.h"

#include <QtGui/QWheelEvent>

namespace quillmere {

ChoiceField::ChoiceField(const QString& name, QWidget* parent) : QComboBox(parent) {
  setAccessibleName(name);
  setFocusPolicy(Qt::StrongFocus);
}

void ChoiceField::wheelEvent(QWheelEvent* event) {
  hasFocus() ? QComboBox::wheelEvent(event) : event->ignore();
}

}  // namespace quillmere
