#pragma once

#include <QtWidgets/QPushButton>

#include "controls/WorkRing.h"

namespace quillmere {

/// A round button on top of a picture: readable whatever lies below. Clicking never changes whether it is on; whoever
/// owns it says so.
class PreviewButton final : public QPushButton {
 public:
  static constexpr int kSide = 32;
  PreviewButton(const QString& symbol, const QString& name, QWidget* parent);

  void setOn(bool isOn);
  /// Something is under way that it began.
  void setWorking(bool isWorking) { ring_.setWorking(isWorking); }
  bool isWorking() const { return ring_.isWorking(); }
  QSize sizeHint() const override { return {kSide, kSide}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void nextCheckState() override {}

 private:
  QString symbol_;
  WorkRing ring_{*this};
};

}  // namespace quillmere
