#pragma once

#include <QtWidgets/QDialog>

namespace quillmere {

/// A window with a few lines, as large as these need at a width that is read with ease; the person gives it no other
/// size. Escape closes it, and Return presses the button with the focus, else the default one.
class SmallWindow : public QDialog {
 public:
  SmallWindow(const QString& title, int letters);

 protected:
  static constexpr int kMargin = 24;

  bool event(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void fit();

  int letters_;  ///< of a line
};

/// The application's own icon: an ornament beside its name.
class ApplicationIconView final : public QWidget {
 public:
  ApplicationIconView(int points, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace quillmere
