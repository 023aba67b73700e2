#pragma once

#include <QtGui/QPainter>
#include <QtGui/QPixmap>

namespace quillmere {

/// The shadow around a card of any size: black at 0.3, 4 points down, soft, and outside the card only. It is drawn once
/// for a scale, about the smallest card with whole corners, and put together from the parts of that picture.
class CardShadow {
 public:
  /// How far it reaches from the card at most, which is downwards; in points.
  static constexpr int kReach = 24;

  void paint(QPainter& painter, const QRect& card);
  /// How many times it was drawn anew.
  int count() const { return count_; }

 private:
  void draw(qreal scale);

  QPixmap picture_;
  int count_ = 0;
};

}  // namespace quillmere
