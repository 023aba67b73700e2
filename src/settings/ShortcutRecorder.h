#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>
#include <chrono>
#include <optional>
#include <set>

#include "model/AppModel.h"
#include "settings/ShortcutRecording.h"

namespace quillmere {

class ActionButton;
class ShortcutField;
class SymbolNote;

/// The row that shows the review shortcut and records another. While it records, the window has the whole keyboard, so
/// that keys reach it which the window manager would take, and no shortcut of ours is heard. Both end with the
/// recording, once the key that ended it is let go: what is held repeats, and would be taken for the shortcut itself.
/// They end at once when the window loses the keyboard, is closed or minimised, another page comes to its front, or the
/// screen is locked or goes dark; and by themselves after a while, since what locks a screen may need the keyboard
/// first. That the program is gone ends them too, since the display server takes back what a client had.
class ShortcutRecorder final : public QWidget {
 public:
  /// The events may be none where nobody tells them.
  ShortcutRecorder(AppModel& model, SystemEvents* events, QWidget* parent);
  ~ShortcutRecorder() override;

  void refresh();
  bool isRecording() const { return isRecording_; }
  /// Without a change of the shortcut, and at once.
  void stop();

  struct Patience {
    std::chrono::milliseconds key{30000};     ///< for the next one
    std::chrono::milliseconds release{2000};  ///< of the key that ended it, which another session may get instead
  };
  Patience patience;

 protected:
  bool event(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  /// Of the application while it records: keys are read before any control of the window sees them.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void toggle(quint32 heldKey);
  void start(quint32 heldKey);
  /// It is over, but for the keys that are still held.
  void finish();
  void giveBack();
  void giveUp();
  bool isOfWindow(const QObject& watched) const;
  bool take(const QKeyEvent& event);
  void release(quint32 scanCode);
  bool apply(const RecordedKey& key);
  void set(const std::optional<HotKeyShortcut>& shortcut);
  void takeKeyboard(bool takes);
  void warn(const QString& text);
  void announce(const QString& text) const;

  AppModel& model_;
  ShortcutField* field_;
  ActionButton* clear_;
  SymbolNote* message_;
  bool isRecording_ = false;
  bool hasKeyboard_ = false;  ///< from the start until all is given back
  // By scan code. A press of a key that is down is a repeat, which is not always marked.
  std::set<quint32> downKeys_;
  std::set<quint32> readKeys_;  ///< those of them that are nobody else's as long as they are held
  QTimer waiting_;
  Connection locks_;
  Connection screens_;
};

}  // namespace quillmere
