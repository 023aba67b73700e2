#include "update/library/UpdateSchedule.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

class UpdateScheduleTest : public ::testing::Test {
 protected:
  Date now() const { return start + std::chrono::duration<double>(executor.instant() - Instant{}).count() + shift; }

  ManualExecutor executor;
  Date start{800'000'000};
  double shift = 0;  ///< how far somebody set the clock
  std::optional<Date> last;
  int checks = 0;
  UpdateSchedule schedule{executor,
                          [this] { return now(); },
                          {[this] { return last; }, [this](Date date) { last = date; }},
                          [this] {
                            ++checks;
                            schedule.noteCheck();
                          }};
};

TEST_F(UpdateScheduleTest, ChecksOnceADayFromAMinuteAfterTheStart) {
  schedule.setOn(true);
  executor.advance(seconds(59));
  EXPECT_EQ(checks, 0);
  executor.advance(seconds(1));
  EXPECT_EQ(checks, 1);
  executor.advance(hours(23));
  EXPECT_EQ(checks, 1);
  executor.advance(hours(2));
  EXPECT_EQ(checks, 2);
  executor.advance(hours(24 * 10));
  EXPECT_GE(checks, 11);
  EXPECT_LE(checks, 12);
}

TEST_F(UpdateScheduleTest, AStartSoonAfterTheLastCheckWaits) {
  last = start + -3600.0;
  schedule.setOn(true);
  executor.advance(hours(22));
  EXPECT_EQ(checks, 0);
  executor.advance(hours(2));
  EXPECT_EQ(checks, 1);
}

TEST_F(UpdateScheduleTest, ACheckByThePersonCountsToo) {
  schedule.setOn(true);
  schedule.noteCheck();
  executor.advance(hours(20));
  EXPECT_EQ(checks, 0);
}

TEST_F(UpdateScheduleTest, AClockThatWasAheadPutsNothingOff) {
  last = start + 10 * 365 * UpdateSchedule::kDay;
  schedule.setOn(true);
  executor.advance(minutes(1));
  EXPECT_EQ(checks, 1);
  executor.advance(hours(5));
  EXPECT_EQ(checks, 1);
}

TEST_F(UpdateScheduleTest, AClockThatIsSetMovesTheNextCheckByNoMoreThanAnHour) {
  schedule.setOn(true);
  executor.advance(minutes(1));
  shift = -400 * UpdateSchedule::kDay;  // back: the last check is in the future now
  executor.advance(hours(1));
  EXPECT_EQ(checks, 2);
  shift = 0;  // and forward
  executor.advance(hours(1));
  EXPECT_EQ(checks, 3);
}

TEST_F(UpdateScheduleTest, OffThereIsNoCheckAndNothingThatWaits) {
  schedule.setOn(true);
  schedule.setOn(true);
  EXPECT_EQ(executor.pendingDelays(), 1U);
  schedule.setOn(false);
  EXPECT_EQ(executor.pendingDelays(), 0U);
  EXPECT_FALSE(schedule.isOn());
  executor.advance(hours(50));
  EXPECT_EQ(checks, 0);
}

TEST_F(UpdateScheduleTest, ItMayBeSwitchedOffByItsOwnCheck) {
  UpdateSchedule* made = nullptr;
  UpdateSchedule once(
      executor, [this] { return now(); }, {[] { return std::optional<Date>(); }, [](Date) {}},
      [&] {
        ++checks;
        made->setOn(false);
      });
  made = &once;
  once.setOn(true);
  executor.advance(hours(50));
  EXPECT_EQ(checks, 1);
}

}  // namespace
}  // namespace quillmere
