#include "records/TemporaryDuration.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

Date moment(const char* utc) {
  return Date::fromDateTime(QDateTime::fromString(QString::fromUtf8(utc), Qt::ISODateWithMs));
}

QString endOfDay(const char* zone, const char* utc) {
  const Date end = expiry(TemporaryDuration::endOfDay, moment(utc), QTimeZone(zone));
  return end.toDateTime().toUTC().toString(Qt::ISODate);
}

TEST(TemporaryDuration, ChoicesStandInTheOrderOfTheMenus) {
  std::vector<int> rawValues;
  for (const auto duration : kTemporaryDurations) rawValues.push_back(static_cast<int>(duration));
  EXPECT_EQ(rawValues, (std::vector{60, 120, 180, 300, 900, 3600, -1}));
}

TEST(TemporaryDuration, EveryRawValueOfTheTableGivesItsDuration) {
  for (const auto duration : kTemporaryDurations) {
    EXPECT_EQ(temporaryDuration(static_cast<int>(duration)), duration);
  }
}

TEST(TemporaryDuration, ARawValueOutsideTheTableGivesNone) {
  for (const int raw : {0, 1, 59, 61, 240, 600, 3599, 3601, 7200, -2, -60}) {
    EXPECT_EQ(temporaryDuration(raw), std::nullopt) << raw;
  }
}

TEST(TemporaryDuration, ExpiresAfterItsSeconds) {
  const Date start{1000.5};
  const QTimeZone zone("Europe/Berlin");
  EXPECT_EQ(expiry(TemporaryDuration::oneMinute, start, zone), Date{1060.5});
  EXPECT_EQ(expiry(TemporaryDuration::twoMinutes, start, zone), Date{1120.5});
  EXPECT_EQ(expiry(TemporaryDuration::threeMinutes, start, zone), Date{1180.5});
  EXPECT_EQ(expiry(TemporaryDuration::fiveMinutes, start, zone), Date{1300.5});
  EXPECT_EQ(expiry(TemporaryDuration::fifteenMinutes, start, zone), Date{1900.5});
  EXPECT_EQ(expiry(TemporaryDuration::oneHour, start, zone), Date{4600.5});
}

TEST(TemporaryDuration, EndOfDayIsTheLastSecondOfTheDayInThatZone) {
  EXPECT_EQ(endOfDay("UTC", "2024-01-02T03:04:05Z"), "2024-01-02T23:59:59Z");
  EXPECT_EQ(endOfDay("Europe/Berlin", "2024-01-02T03:04:05Z"), "2024-01-02T22:59:59Z");
  EXPECT_EQ(endOfDay("Europe/Berlin", "2024-01-02T23:30:00Z"), "2024-01-03T22:59:59Z");
  EXPECT_EQ(endOfDay("Asia/Tokyo", "2024-01-02T20:00:00Z"), "2024-01-03T14:59:59Z");
  EXPECT_EQ(endOfDay("America/Los_Angeles", "2024-01-02T03:04:05Z"), "2024-01-02T07:59:59Z");
}

TEST(TemporaryDuration, EndOfDayAtItsLastSecondIsThatSecond) {
  EXPECT_EQ(endOfDay("UTC", "2024-01-02T23:59:59Z"), "2024-01-02T23:59:59Z");
}

TEST(TemporaryDuration, EndOfDayChosenWithinTheLastSecondLiesInThePast) {
  const Date late = moment("2024-01-02T23:59:59.500Z");
  const Date end = expiry(TemporaryDuration::endOfDay, late, QTimeZone::utc());
  EXPECT_EQ(end, moment("2024-01-02T23:59:59Z"));
  EXPECT_LT(end, late);
}

TEST(TemporaryDuration, EndOfDayFollowsTheOffsetOfTheEveningWhenClocksChangeThatDay) {
  // Forward at 02:00 and back at 03:00 local time.
  EXPECT_EQ(endOfDay("Europe/Berlin", "2024-03-30T23:30:00Z"), "2024-03-31T21:59:59Z");
  EXPECT_EQ(endOfDay("Europe/Berlin", "2024-10-26T22:30:00Z"), "2024-10-27T22:59:59Z");
}

TEST(TemporaryDuration, EndOfDayThatClocksGoOverTwiceIsTheFirst) {
  // Clocks went back from midnight to 23:00 of the same day.
  EXPECT_EQ(endOfDay("America/Sao_Paulo", "2018-02-17T15:00:00Z"), "2018-02-18T01:59:59Z");
}

TEST(TemporaryDuration, EndOfDayThatClocksSkipIsTheMomentAfterTheGap) {
  // Clocks went forward from 23:00 to midnight.
  EXPECT_EQ(endOfDay("America/Nuuk", "2024-03-30T15:00:00Z"), "2024-03-31T01:00:00Z");
}

TEST(TemporaryDuration, MenuTextFollowsTheNumber) {
  std::vector<std::string> texts;
  for (const auto duration : kTemporaryDurations) texts.push_back(menuText(duration).toStdString());
  EXPECT_EQ(texts, (std::vector<std::string>{"1 Minute", "2 Minutes", "3 Minutes", "5 Minutes", "15 Minutes", "1 Hour",
                                             "End of Day"}));
}

TEST(TemporaryDuration, HintFollowsTheNumber) {
  std::vector<std::string> texts;
  for (const auto duration : kTemporaryDurations) texts.push_back(temporaryHint(duration).toStdString());
  EXPECT_EQ(texts, (std::vector<std::string>{
                       "Moves this screenshot to Trash in 1 minute.", "Moves this screenshot to Trash in 2 minutes.",
                       "Moves this screenshot to Trash in 3 minutes.", "Moves this screenshot to Trash in 5 minutes.",
                       "Moves this screenshot to Trash in 15 minutes.", "Moves this screenshot to Trash in 1 hour.",
                       "Moves this screenshot to Trash at the end of the day."}));
}

}  // namespace
}  // namespace quillmere
