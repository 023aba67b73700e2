#pragma once

#include <QtWidgets/QWidget>

#include "controls/WorkRing.h"

namespace quillmere {

/// The turning ring by itself, beside a text that says what is under way.
class WorkIndicator final : public QWidget {
 public:
  explicit WorkIndicator(QWidget* parent);
  bool isWorking() const { return ring_.isWorking(); }
  QSize sizeHint() const override { return {kSide, kSide}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  static constexpr int kSide = 18;
  WorkRing ring_{*this};
};

}  // namespace quillmere
