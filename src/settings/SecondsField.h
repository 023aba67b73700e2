#pragma once

#include <QtWidgets/QSpinBox>

namespace quillmere {

/// A number that is set once it is whole. One that is typed beyond its range becomes the nearest that is in it: who
/// types 500 wants as long as can be. The wheel turns it only while it has the keyboard, since the page it stands on
/// scrolls.
class SecondsField final : public QSpinBox {
 public:
  SecondsField(int shortest, int longest, const QString& name, QWidget* parent);

 protected:
  QValidator::State validate(QString& text, int& position) const override;
  void fixup(QString& text) const override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace quillmere
