#pragma once

#include <QtCore/QString>
#include <deque>
#include <functional>
#include <optional>

#include "foundation/Executor.h"
#include "model/AppModelDependencies.h"

namespace quillmere {

/// Lets one announcement after the other be heard whole, for readers that interrupt themselves for each, and leave out
/// what they are told in the flood of a window that just opens: the first waits until that is over. Of those that wait,
/// the high ones come first. One that is waiting already is not said again; of more than eight the oldest low ones are
/// left out, since nobody waits a minute for old news.
class AnnouncementQueue {
 public:
  AnnouncementQueue(Executor& executor, std::function<void(const QString&)> say);
  ~AnnouncementQueue();

  void add(const QString& text, AnnouncementPriority priority);
  /// How long a reader takes for it at its usual speed.
  static Duration timeToSay(const QString& text);
  /// How long the first one waits.
  static constexpr Duration kSettling = std::chrono::milliseconds(400);

 private:
  struct Announcement {
    QString text;
    AnnouncementPriority priority;
    bool operator==(const Announcement&) const = default;
  };
  void waitAndThen(Duration pause, void (AnnouncementQueue::*next)());
  void sayFirst();
  void sayNext();
  void say(const QString& text);

  Executor& executor_;
  std::function<void(const QString&)> say_;
  std::deque<Announcement> waiting_;   ///< in the order in which they will be said
  std::optional<Announcement> first_;  ///< waits for the flood to be over; none comes before it
  std::optional<Executor::DelayID> speaking_;
};

}  // namespace quillmere
