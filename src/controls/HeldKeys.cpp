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

HeldKeys::HeldKeys(std::function<bool(quint32)> isDown) : isDown_(std::move(isDown)) {
  qGuiApp->installEventFilter(this);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
    if (window) forgetReleased();
  });
}

void HeldKeys::forgetReleased() {
  std::erase_if(pressedAt_, [this](const auto& key) { return !isDown_ || !isDown_(key.first); });
}

bool HeldKeys::isRepeat(const QKeyEvent& event) {
  const auto [press, isNew] = pressedAt_.emplace(identifier(event), event.timestamp());
  return event.isAutoRepeat() || (!isNew && press->second != event.timestamp());
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      if (!isRepeat(key) || !decides(key.key())) return false;
      // Taken by somebody, and so no shortcut; as a press it then comes to its window.
      event->accept();
      return true;
    }
    case QEvent::KeyPress: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      return watched->isWindowType() && isRepeat(key) && decides(key.key());
    }
    case QEvent::KeyRelease: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      if (watched->isWindowType() && !key.isAutoRepeat()) pressedAt_.erase(identifier(key));
      return false;
    }
    default:
      return false;
  }
}

}  // namespace quillmere
