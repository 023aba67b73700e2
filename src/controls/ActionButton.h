#pragma once

#include <QtWidgets/QPushButton>

namespace quillmere {

/// A button of the program's own look: a symbol and a text on a rounded ground.
class ActionButton final : public QPushButton {
 public:
  enum class Role { primary, secondary, destructive, icon };
  ActionButton(Role role, const QString& symbol, const QString& text, QWidget* parent = nullptr);

  void setSymbol(const QString& symbol);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Role role_;
  QString symbol_;
};

/// A ring around a focused control, inside its rectangle.
void paintFocusRing(class QPainter& painter, const QRectF& around, qreal radius, const QColor& color);

}  // namespace quillmere
