#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include "model/AppModelDependencies.h"

namespace quillmere {

/// What the program says on the accessibility bus beside what its windows show.
class AccessibilityEvents {
 public:
  AccessibilityEvents();
  ~AccessibilityEvents();

  /// Whether Qt has brought the program's windows to that bus; before, no reader knows who is speaking.
  static bool isPossible();
  /// The event made for it, which this version of Qt does not send itself.
  static void announce(const QString& text, AnnouncementPriority priority);
  /// A notification that shows, with this text. It has no priority: readers interrupt themselves for it, and ask for
  /// the text only after they heard of it.
  void notify(const QString& text);

 private:
  class Notice;
  QObject place_;             ///< what Qt's accessibility knows the notification by
  Notice* notice_ = nullptr;  ///< Qt's own
};

}  // namespace quillmere
