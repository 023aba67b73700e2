#include "shell/ApplicationWindows.h"

#include <QtCore/QEvent>
#include <QtWidgets/QDialog>
#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

/// The sheet or question that is open over it, which has the keyboard as long as it holds the window up.
QWidget& foremostOver(QWidget& window) {
  for (QDialog* dialog : window.findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
    if (dialog->isModal() && dialog->isVisible()) return foremostOver(*dialog);
  }
  return window;
}

}  // namespace

void ApplicationWindows::add(QWidget& window) {
  std::erase(windows_, nullptr);
  if (std::find(windows_.begin(), windows_.end(), &window) != windows_.end()) return;
  windows_.emplace_back(&window);
  window.installEventFilter(this);
}

void ApplicationWindows::open(QWidget& window) {
  add(window);
  setPolicy(ActivationPolicy::regular);
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  moveToFront(&window);
  QWidget& foremost = foremostOver(window);
  foremost.raise();
  foremost.activateWindow();
}

QWidget* ApplicationWindows::front() const {
  QWidget* minimized = nullptr;
  for (QWidget* window : windows_) {
    if (!window || !window->isVisible()) continue;
    if (!window->isMinimized()) return window;
    if (!minimized) minimized = window;
  }
  return minimized;
}

QWidget* ApplicationWindows::placeForQuestion() const {
  QWidget* window = front();
  return window && !window->isMinimized() ? &foremostOver(*window) : nullptr;
}

void ApplicationWindows::closeFront() {
  QWidget* window = front();
  if (window && !window->isMinimized()) window->close();
}

void ApplicationWindows::setPolicy(ActivationPolicy policy) {
  if (std::exchange(policy_, policy) != policy) policyChanged();
}

bool ApplicationWindows::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::WindowActivate) moveToFront(watched);
  // Only the program itself hides a window; other desktops and minimizing are the window manager's.
  if (event->type() == QEvent::Hide && !event->spontaneous()) didClose();
  return false;
}

void ApplicationWindows::moveToFront(QObject* window) {
  const auto place = std::find(windows_.begin(), windows_.end(), window);
  if (place != windows_.end()) std::rotate(windows_.begin(), place, place + 1);
}

/// The place goes back with the last own window. If only minimized ones are left, the last used of them comes back: the
/// person is working with the program.
void ApplicationWindows::didClose() {
  QWidget* next = front();
  if (!next) {
    setPolicy(ActivationPolicy::accessory);
  } else if (next->isMinimized()) {
    open(*next);
  }
  closed();
}

void ActivationPolicyLoan::borrow() {
  if (isRaised_ || windows_.policy() == ActivationPolicy::regular) return;
  isRaised_ = true;
  windows_.setPolicy(ActivationPolicy::regular);
}

void ActivationPolicyLoan::repay() {
  if (std::exchange(isRaised_, false) && !windows_.isAnyShown()) windows_.setPolicy(ActivationPolicy::accessory);
}

}  // namespace quillmere
