#include "records/TemporaryDuration.h"

#include <algorithm>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kSecondsPerHour = 3600;

/// The first moment at which the clocks of `zone` show this local time, or the first after a gap that swallows it.
QDateTime firstMoment(const QDate& day, const QTime& time, const QTimeZone& zone) {
  const QDateTime asIfUtc(day, time, Qt::UTC);
  // Any offset that holds within a day of the moment is a candidate; the largest gives the earliest moment.
  const int before = zone.offsetFromUtc(asIfUtc.addDays(-1));
  const int after = zone.offsetFromUtc(asIfUtc.addDays(1));
  for (const int offset : {std::max(before, after), std::min(before, after)}) {
    const QDateTime candidate = asIfUtc.addSecs(-offset);
    if (zone.offsetFromUtc(candidate) == offset) return candidate;
  }
  // In a gap every candidate misses; the gap ends where the offset changes.
  const auto change = zone.nextTransition(asIfUtc.addSecs(-std::max(before, after)));
  return change.atUtc.isValid() ? change.atUtc : asIfUtc.addSecs(-std::min(before, after));
}

}  // namespace

std::optional<TemporaryDuration> temporaryDuration(int rawValue) {
  const auto found = std::find_if(kTemporaryDurations.begin(), kTemporaryDurations.end(),
                                  [&](auto duration) { return static_cast<int>(duration) == rawValue; });
  if (found == kTemporaryDurations.end()) return std::nullopt;
  return *found;
}

Date expiry(TemporaryDuration duration, Date moment, const QTimeZone& zone) {
  if (duration != TemporaryDuration::endOfDay) return moment + static_cast<int>(duration);
  const QDateTime local = moment.toDateTime().toTimeZone(zone);
  if (!local.isValid()) return moment;
  return Date::fromDateTime(firstMoment(local.date(), QTime(23, 59, 59), zone));
}

QString menuText(TemporaryDuration duration) {
  const int seconds = static_cast<int>(duration);
  if (duration == TemporaryDuration::endOfDay) return localized("End of Day");
  if (seconds >= kSecondsPerHour) return localized("%lld Hours", {seconds / kSecondsPerHour});
  return localized("%lld Minutes", {seconds / 60});
}

QString temporaryHint(TemporaryDuration duration) {
  const int seconds = static_cast<int>(duration);
  if (duration == TemporaryDuration::endOfDay) {
    return localized("Moves this screenshot to Trash at the end of the day.");
  }
  if (seconds >= kSecondsPerHour) {
    return localized("Moves this screenshot to Trash in %lld hours.", {seconds / kSecondsPerHour});
  }
  return localized("Moves this screenshot to Trash in %lld minutes.", {seconds / 60});
}

}  // namespace quillmere
