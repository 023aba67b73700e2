#pragma once

#include "controls/SoftShadow.h"

namespace quillmere {

/// The shadow around a card of any size, in two layers: a tight one, by which the card touches what lies below, and a
/// wide soft one that falls 6 points down.
class CardShadow {
 public:
  /// How far it reaches from the card at most, which is downwards; in points.
  static constexpr int kReach = 24;

  CardShadow();
  void paint(QPainter& painter, const QRect& card) { shadow_.paint(painter, card); }
  /// How many times it was drawn anew.
  int count() const { return shadow_.count(); }

 private:
  SoftShadow shadow_;
};

}  // namespace quillmere
