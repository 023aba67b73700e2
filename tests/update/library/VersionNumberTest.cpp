#include "update/library/VersionNumber.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

VersionNumber version(const char* text) {
  return VersionNumber::read(QLatin1String(text)).value();
}

TEST(VersionNumber, IsOneToFourWholeNumbers) {
  for (const char* text : {"1", "0.1", "1.2.3", "1.2.3.4", "007.1", "999999999"}) {
    EXPECT_TRUE(VersionNumber::read(QLatin1String(text))) << text;
  }
  for (const char* text : {"", ".", "1.", ".1", "1..2", "1.2.3.4.5", "-1", "+1", " 1", "1 ", "1.2b", "v1", "0x1", "1e3",
                           "9999999999", "99999999999999999999999999"}) {
    EXPECT_FALSE(VersionNumber::read(QLatin1String(text))) << text;
  }
  EXPECT_FALSE(VersionNumber::read(QStringLiteral("١.٢")));  // digits of another script
}

TEST(VersionNumber, ComparesNumberByNumberAndNotAsText) {
  EXPECT_LT(version("0.9"), version("0.10"));
  EXPECT_LT(version("1.99.99"), version("2"));
  EXPECT_LT(version("1.2.3"), version("1.2.3.1"));
  EXPECT_EQ(version("1.2"), version("1.2.0"));
  EXPECT_EQ(version("01.2"), version("1.2"));
}

TEST(VersionNumber, ShowsThreeNumbersAndTheFourthWhereThereIsOne) {
  EXPECT_EQ(version("1").display(), QStringLiteral("1.0.0"));
  EXPECT_EQ(version("1.2.3.4").display(), QStringLiteral("1.2.3.4"));
}

}  // namespace
}  // namespace quillmere
