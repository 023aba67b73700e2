#pragma once

#include <QtCore/QVariantAnimation>

class QColor;
class QPainter;
class QPointF;
class QWidget;

namespace quillmere {

/// The open ring that stands in a button for its symbol while it works; it turns where things may move.
class WorkRing {
 public:
  /// `button` is drawn again whenever the ring has turned.
  explicit WorkRing(QWidget& button);

  bool isWorking() const { return isWorking_; }
  void setWorking(bool isWorking);
  /// `centre` in points.
  void paint(QPainter& painter, const QPointF& centre, const QColor& color) const;

 private:
  QWidget& button_;
  bool isWorking_ = false;
  QVariantAnimation turning_;
};

}  // namespace quillmere
