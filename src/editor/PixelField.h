#pragma once

#include <QtWidgets/QLineEdit>
#include <functional>
#include <optional>
#include <set>

namespace quillmere {

/// A field for a whole number of pixels. What else is typed stays in it, and is no number.
class PixelField final : public QLineEdit {
 public:
  PixelField(const QString& name, QWidget* parent);

  std::optional<qint64> number() const;
  void setNumber(std::optional<qint64> number);
  /// Return, or the keyboard goes elsewhere.
  enum class Commit { byReturn, byLeaving };
  std::function<void(Commit)> onCommit;
  /// The arrow keys: by one, with Shift by ten.
  std::function<void(int by)> onStep;
  /// The first arrow key has gone down, or the last one is up again or has been taken away with the keyboard.
  std::function<void(bool isHeld)> onHold;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void takeArrow(int key, int by);
  void letGo();

  std::set<int> arrows_;  ///< that are held
};

}  // namespace quillmere
