#include "update/SoftwareUpdateModel.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(SoftwareUpdateModel, WithoutAnUpdaterNothingCanBeCheckedOrSet) {
  const SoftwareUpdateModel model;
  EXPECT_FALSE(model.canCheckForUpdates());
  model.checkForUpdates();
  model.setChecksForUpdatesAutomatically(true);
  EXPECT_FALSE(model.checksForUpdatesAutomatically());
}

TEST(SoftwareUpdateModel, ACheckIsAskedForOnlyWhileItCanBeDone) {
  SoftwareUpdateModel model;
  int checks = 0;
  model.checkForUpdatesAction = [&] { ++checks; };
  model.checkForUpdates();
  EXPECT_EQ(checks, 0);
  model.setCanCheckForUpdates(true);
  model.checkForUpdates();
  EXPECT_EQ(checks, 1);
}

TEST(SoftwareUpdateModel, TheUpdaterDecidesWhetherItChecksByItself) {
  SoftwareUpdateModel model;
  model.setChecksForUpdatesAutomaticallyAction = [&](bool checks) { model.setChecksAutomatically(checks); };
  model.setChecksForUpdatesAutomatically(true);
  EXPECT_TRUE(model.checksForUpdatesAutomatically());
}

TEST(SoftwareUpdateModel, OnlyAChangeIsTold) {
  SoftwareUpdateModel model;
  int told = 0;
  const Connection follower = model.changed.connect([&] { ++told; });
  model.setCanCheckForUpdates(true);
  model.setCanCheckForUpdates(true);
  model.setInstallingUpdate(true);
  EXPECT_EQ(told, 2);
}

}  // namespace
}  // namespace quillmere
