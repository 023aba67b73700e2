#pragma once

#include <QtWidgets/QComboBox>

namespace quillmere {

/// A choice from a list. The wheel turns it only while it has the keyboard, since the page it stands on scrolls.
class ChoiceField final : public QComboBox {
 public:
  ChoiceField(const QString& name, QWidget* parent);

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace quillmere
