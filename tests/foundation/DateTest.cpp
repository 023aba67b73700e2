#include "foundation/Date.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(Date, CountsSecondsSince2001) {
  const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
  EXPECT_EQ(Date::fromDateTime(reference), Date{0});
  EXPECT_EQ(Date::fromDateTime(reference.addMSecs(1500)), Date{1.5});
  EXPECT_EQ(Date{1.5}.toDateTime().toUTC(), reference.addMSecs(1500));
  EXPECT_EQ(Date::fromUnix(978307200, 0), Date{0});
  EXPECT_EQ(Date::fromUnix(978307201, 250'000'000), Date{1.25});
  EXPECT_EQ(Date::fromUnix(0, 0), Date{-978307200});
}

TEST(Date, IsOrderedAndMovedBySeconds) {
  EXPECT_LT(Date{1}, Date{2});
  EXPECT_EQ(Date{1} + 0.5, Date{1.5});
  EXPECT_EQ(Date{3} - Date{1}, 2.0);
}

TEST(Date, BeyondAnyCalendarIsBorne) {
  for (const double far : {1e300, -1e300, 9.3e15, 1e13}) {
    EXPECT_GT(std::abs(static_cast<double>(Date{far}.toDateTime().toMSecsSinceEpoch())), 1e15) << far;
  }
}

}  // namespace
}  // namespace quillmere
