#pragma once

#include <QtCore/QVariantAnimation>
#include <QtWidgets/QWidget>

namespace quillmere {

/// How the card comes and goes: it fades in and rises a little, and fades away. Only where a compositor shows what is
/// translucent, and not where less motion is wanted. Nothing waits for it: the first frame is seen at once, clicks
/// count from the first moment, and what fades away is a picture that nothing can reach.
class CardMotion final {
 public:
  static constexpr int kMilliseconds = 150;
  /// How far below its place the card begins, in points.
  static constexpr int kRise = 8;

  /// `layOut` is called while the card rises.
  CardMotion(QWidget& panel, std::function<void()> layOut);

  void begin();
  /// At its place and opaque, from now on.
  void end();
  /// How far below its place the card stands now.
  int offset() const { return offset_; }

  /// Leaves a picture of the panel where it stands, which fades away by itself.
  static void fadeAway(QWidget& panel);
  /// The picture is gone at once.
  static void dropPicture(const QWidget& panel);

 private:
  QWidget& panel_;
  std::function<void()> layOut_;
  QVariantAnimation rise_;
  int offset_ = 0;
};

}  // namespace quillmere
