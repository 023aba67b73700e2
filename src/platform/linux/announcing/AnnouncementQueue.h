#pragma once

#include <QtCore/QString>
#include <deque>
#include <functional>
#include <optional>

#include "foundation/Executor.h"
#include "model/AppModelDependencies.h"

namespace quillmere {

/// Lets one announcement after the other be heard whole, for readers that interrupt themselves for each. Of those that
/// wait, the high ones come first. One that is waiting already is not said again; of more than eight the oldest low
/// ones are left out, since nobody waits a minute for old news.
class AnnouncementQueue {
 public:
  AnnouncementQueue(Executor& executor, std::function<void(const QString&)> say);
  ~AnnouncementQueue();

  void add(const QString& text, AnnouncementPriority priority);
  /// How long a reader takes for it at its usual speed.
  static Duration timeToSay(const QString& text);

 private:
  struct Announcement {
    QString text;
    AnnouncementPriority priority;
    bool operator==(const Announcement&) const = default;
  };
  void sayNext();

  Executor& executor_;
  std::function<void(const QString&)> say_;
  std::deque<Announcement> waiting_;  ///< in the order in which they will be said
  std::optional<Executor::DelayID> speaking_;
};

}  // namespace quillmere
