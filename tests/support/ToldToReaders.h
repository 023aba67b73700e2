#pragma once

#include <QtGui/private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#include <QtGui/QAccessible>
#include <vector>

namespace quillmere::testing {

/// While it lives a screen reader runs, as far as Qt knows, and what it is told is noted.
class ToldToReaders {
 public:
  struct Event {
    QAccessible::Event type;
    QObject* about;
    QString text;                     ///< that came in
    QAccessible::State changed = {};  ///< the states that are others now
  };

  ToldToReaders() {
    noted().clear();
    setReading(true);
    before_ = QAccessible::installUpdateHandler(&note);
  }
  ~ToldToReaders() {
    QAccessible::installUpdateHandler(before_);
    setReading(false);
  }
  ToldToReaders(const ToldToReaders&) = delete;
  ToldToReaders& operator=(const ToldToReaders&) = delete;

  /// All of this type about this object, since it began or was asked last.
  std::vector<Event> take(QAccessible::Event type, const QObject& about) {
    std::vector<Event> found;
    for (const Event& event : noted()) {
      if (event.type == type && event.about == &about) found.push_back(event);
    }
    noted().clear();
    return found;
  }

 private:
  static std::vector<Event>& noted() {
    static std::vector<Event> events;
    return events;
  }
  static void note(QAccessibleEvent* event) {
    Event told{event->type(), event->object(), {}};
    if (told.type == QAccessible::TextInserted) {
      told.text = static_cast<QAccessibleTextInsertEvent*>(event)->textInserted();
    }
    if (told.type == QAccessible::StateChanged) {
      told.changed = static_cast<QAccessibleStateChangeEvent*>(event)->changedStates();
    }
    noted().push_back(told);
  }
  /// As the platform notices it.
  static void setReading(bool isReading) {
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(isReading);
  }
  QAccessible::UpdateHandler before_;
};

}  // namespace quillmere::testing
