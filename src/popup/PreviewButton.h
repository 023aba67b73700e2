#pragma once

#include <QtCore/QVariantAnimation>
#include <QtWidgets/QPushButton>

namespace quillmere {

/// A round button on top of a picture: readable whatever lies below. Clicking never changes whether it is on; whoever
/// owns it says so.
class PreviewButton final : public QPushButton {
 public:
  static constexpr int kSide = 32;
  PreviewButton(const QString& symbol, const QString& name, QWidget* parent);

  void setOn(bool isOn);
  /// Something is under way that it began.
  void setWorking(bool isWorking);
  bool isWorking() const { return isWorking_; }
  QSize sizeHint() const override { return {kSide, kSide}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void nextCheckState() override {}

 private:
  void paintWork(QPainter& painter, const QColor& color) const;
  QString symbol_;
  bool isWorking_ = false;
  QVariantAnimation turning_;
};

}  // namespace quillmere
