#pragma once

#include <QtCore/QString>
#include <QtCore/QTimeZone>
#include <array>
#include <optional>

#include "foundation/Date.h"

namespace quillmere {

/// How long a Temporary screenshot is kept. The number is what the settings store.
enum class TemporaryDuration : int {
  oneMinute = 60,
  twoMinutes = 120,
  threeMinutes = 180,
  fiveMinutes = 300,
  fifteenMinutes = 900,
  oneHour = 3600,
  endOfDay = -1,
};

/// In the order of the menus.
inline constexpr std::array kTemporaryDurations{
    TemporaryDuration::oneMinute,   TemporaryDuration::twoMinutes,     TemporaryDuration::threeMinutes,
    TemporaryDuration::fiveMinutes, TemporaryDuration::fifteenMinutes, TemporaryDuration::oneHour,
    TemporaryDuration::endOfDay,
};

std::optional<TemporaryDuration> temporaryDuration(int rawValue);

/// The moment of expiry of a decision taken at `moment`. The end of the day is 23:59:59 of that day in `zone`, which
/// may lie in the past by then; where clocks go over it twice it is the first, where they skip it the next moment.
Date expiry(TemporaryDuration duration, Date moment, const QTimeZone& zone);

QString menuText(TemporaryDuration duration);
/// What a screen reader adds to the Temporary button.
QString temporaryHint(TemporaryDuration duration);

}  // namespace quillmere
