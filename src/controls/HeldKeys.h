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
  /// `isDown` tells at the moment whether a key is held, by its native scan code. It is asked when a window gets the
  /// keyboard: releases while another program had it were not told.
  explicit HeldKeys(std::function<bool(quint32 scanCode)> isDown);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void forgetReleased();

  std::function<bool(quint32)> isDown_;
  // Keys that are down, by scan code: those that were tried as shortcuts, and those that were pressed. One event cannot
  // be told from its other form: on its way through a screen reader it loses its time.
  std::set<quint32> tried_;
  std::set<quint32> pressed_;
};

}  // namespace quillmere
