#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>
#include <functional>

namespace quillmere::testing {

/// Runs the event loop until the condition holds; false when it does not within a time that only a hang takes.
inline bool runLoopUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(20000);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents();
    if (!condition()) QThread::usleep(500);
  }
  return true;
}

}  // namespace quillmere::testing
