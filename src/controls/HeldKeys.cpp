#include "controls/HeldKeys.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethodEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>

namespace quillmere {
namespace {

bool isTypingText() {
  QObject* focus = QGuiApplication::focusObject();
  if (!focus) return false;
  QInputMethodQueryEvent query(Qt::ImEnabled);
  QCoreApplication::sendEvent(focus, &query);
  return query.value(Qt::ImEnabled).toBool();
}

bool decides(int key) {
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
      return true;
    case Qt::Key_Space:
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      return !isTypingText();
    default:
      return false;
  }
}

/// Events that tests make have no scan code.
quint32 identifier(const QKeyEvent& event) {
  return event.nativeScanCode() != 0 ? event.nativeScanCode() : static_cast<quint32>(event.key());
}

}  // namespace

HeldKeys::HeldKeys(std::function<std::set<quint32>()> downKeys) : downKeys_(std::move(downKeys)) {
  qGuiApp->installEventFilter(this);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
    if (window) takeKeyboard();
    hasKeyboard_ = window != nullptr;
  });
}

void HeldKeys::takeKeyboard() {
  const std::set<quint32> down = downKeys_();
  if (!hasKeyboard_) {
    tried_ = pressed_ = down;
    return;
  }
  const auto isUp = [&](quint32 key) { return !down.contains(key); };
  std::erase_if(tried_, isUp);
  std::erase_if(pressed_, isUp);
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event) {
  if (!watched->isWindowType()) return false;
  switch (event->type()) {
    // A press is first tried as a shortcut.
    case QEvent::ShortcutOverride: {
      auto& key = static_cast<QKeyEvent&>(*event);
      const bool isRepeat = !tried_.insert(identifier(key)).second || key.isAutoRepeat();
      if (!isRepeat || !decides(key.key())) return false;
      // Taken by somebody, and so no shortcut. It then comes as a press, perhaps the first where the shortcut took
      // that.
      key.accept();
      pressed_.insert(identifier(key));
      return true;
    }
    case QEvent::KeyPress: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      const bool isRepeat = !pressed_.insert(identifier(key)).second || key.isAutoRepeat();
      return isRepeat && decides(key.key());
    }
    case QEvent::KeyRelease: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      if (key.isAutoRepeat()) return false;
      tried_.erase(identifier(key));
      pressed_.erase(identifier(key));
      return false;
    }
    default:
      return false;
  }
}

}  // namespace quillmere
