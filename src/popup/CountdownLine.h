#pragma once

#include <QtCore/QVariantAnimation>
#include <QtWidgets/QWidget>
#include <optional>

namespace quillmere {

/// A thin line that runs down with the time in which a popup waits for an answer, towards the side where lines of text
/// begin, and stands still while that time does.
class CountdownLine final : public QWidget {
 public:
  static constexpr int kThickness = 2;

  explicit CountdownLine(QWidget* parent);

  /// What is left, from 0 to 1; hidden without any. Told of several times a second, between which it moves by itself.
  void show(std::optional<double> remaining);
  /// What it shows at the moment.
  double shown() const { return shown_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QVariantAnimation motion_;
  double shown_ = 1;
};

}  // namespace quillmere
