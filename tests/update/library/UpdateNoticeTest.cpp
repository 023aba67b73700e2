#include "update/library/UpdateNotice.h"

#include <gtest/gtest.h>

#include "update/library/Maker.h"

namespace quillmere {
namespace {

UpdateFeed feed() {
  const testing::Maker maker;
  return UpdateFeed::readObject(testing::Maker::json(maker.feedOf(QByteArray(3'000'000, 'p')))).value();
}

TEST(UpdateNotice, TellsBothVersionsAndTheSize) {
  const auto notice = UpdateNotice::found(feed(), VersionNumber::read(QStringLiteral("0.1")).value());
  for (const char* part : {"0.2.0", "0.1.0", "2.86 MiB"}) {
    EXPECT_TRUE(notice.message.contains(QLatin1String(part))) << notice.message.toStdString();
  }
  EXPECT_EQ(notice.action, QStringLiteral("Download Update"));
  EXPECT_EQ(notice.safe, QStringLiteral("Not Now"));
}

TEST(UpdateNotice, WhatIsUnderWayCanBeCancelledUntilItIsInstalled) {
  EXPECT_EQ(UpdateNotice::checking().safe, QStringLiteral("Cancel"));
  EXPECT_EQ(UpdateNotice::downloading(feed()).safe, QStringLiteral("Cancel"));
  EXPECT_TRUE(UpdateNotice::installing(feed()).safe.isEmpty());
  for (const auto& notice :
       {UpdateNotice::checking(), UpdateNotice::downloading(feed()), UpdateNotice::installing(feed())}) {
    EXPECT_TRUE(notice.isWork());
    EXPECT_TRUE(notice.action.isEmpty());
  }
  EXPECT_FALSE(UpdateNotice::ready(feed()).isWork());
}

TEST(UpdateNotice, OnlyTwoOfThemGoOn) {
  EXPECT_EQ(UpdateNotice::ready(feed()).action, QStringLiteral("Install and Relaunch"));
  EXPECT_TRUE(UpdateNotice::upToDate({}).action.isEmpty());
  EXPECT_TRUE(UpdateNotice::failed(UpdateFailure::expired).action.isEmpty());
}

}  // namespace
}  // namespace quillmere
