#pragma once

#include <QtCore/QObject>
#include <functional>
#include <set>

namespace quillmere {

/// A key that is held decides once. While it lives, the presses that a window system makes of a held Return, Enter,
/// Escape, Space, Delete or Backspace reach no window of the program; the next one that counts follows a release. In a
/// text the last three repeat as anywhere.
///
/// A repeat is one that Qt marks, or a press of a key that was not released since: on X11 Qt marks few of them, and the
/// platform has to ask the server for real releases only.
class HeldKeys final : public QObject {
 public:
  /// `downKeys` are the native scan codes of the keys that are held at the moment. It is asked when a window gets the
  /// keyboard: what was pressed and released while another program had it was not told, and a key that is held from
  /// there on was meant for that program. A key that is down although no window of ours was told of it, while they had
  /// the keyboard all the time, was pressed for the new window: on a busy machine that happens before we learn of it.
  explicit HeldKeys(std::function<std::set<quint32>()> downKeys);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void takeKeyboard();

  std::function<std::set<quint32>()> downKeys_;
  // Keys that are down, by scan code: those that were tried as shortcuts, and those that were pressed. One event cannot
  // be told from its other form: on its way through a screen reader it loses its time.
  std::set<quint32> tried_;
  std::set<quint32> pressed_;
  bool hasKeyboard_ = false;
};

}  // namespace quillmere
