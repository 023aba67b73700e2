#pragma once

#include <QtCore/QDateTime>
#include <algorithm>
#include <compare>

namespace quillmere {

/// A moment of wall-clock time: seconds since 2001-01-01 00:00:00 UTC. That is also its form on disk.
struct Date {
  double seconds = 0;

  auto operator<=>(const Date&) const = default;
  Date operator+(double interval) const { return {seconds + interval}; }
  double operator-(Date other) const { return seconds - other.seconds; }

  static Date fromUnix(int64_t wholeSeconds, uint32_t nanoseconds) {
    return {static_cast<double>(wholeSeconds - kReferenceUnixSeconds) + static_cast<double>(nanoseconds) / 1e9};
  }
  static Date fromDateTime(const QDateTime& moment) {
    const auto milliseconds = moment.toMSecsSinceEpoch() - kReferenceUnixSeconds * 1000;
    return {static_cast<double>(milliseconds) / 1000.0};
  }
  QDateTime toDateTime() const {
    // A date that was read from a file may be any number; beyond this the milliseconds would not fit.
    constexpr double kFarthest = 9e12;
    const double near = std::clamp(seconds, -kFarthest, kFarthest);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(near * 1000.0) + kReferenceUnixSeconds * 1000);
  }

  static constexpr int64_t kReferenceUnixSeconds = 978307200;
};

}  // namespace quillmere
