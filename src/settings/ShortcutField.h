#pragma once

#include <QtWidgets/QPushButton>
#include <functional>

namespace quillmere {

/// The field that shows a shortcut, and that is pressed to record another.
class ShortcutField final : public QPushButton {
 public:
  explicit ShortcutField(QWidget* parent);

  struct Content {
    QString title;  ///< what stands in it
    QString value;  ///< the same in words
    bool isRecording = false;
  };
  void show(const Content& content);
  /// It was clicked, or Space or Return was pressed on it; the key is the one that is down, 0 without one.
  std::function<void(quint32 nativeScanCode)> onToggle;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool isRecording_ = false;
};

}  // namespace quillmere
