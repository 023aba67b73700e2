#include "shell/AboutInformation.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

AboutInformation information(const char* build) {
  return {.version = QStringLiteral("1.2"), .build = QString::fromLatin1(build), .libraries = {}};
}

TEST(AboutInformationTest, ABuildIsToldByItsNumberWhereItHasOne) {
  EXPECT_EQ(information("345").versionLine(), QStringLiteral("Version 1.2 (Build 345)"));
  EXPECT_EQ(information("").versionLine(), QStringLiteral("Version 1.2"));
}

TEST(AboutInformationTest, ItSaysWhose) {
  EXPECT_EQ(AboutInformation::copyright(), QStringLiteral("Copyright © 2026 The Quillmere developers"));
}

}  // namespace
}  // namespace quillmere
