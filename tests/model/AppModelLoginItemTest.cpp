#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

class AppModelLoginItem : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  ScopedError shown() const { return model->settingsError->value_or(ScopedError()); }
};

TEST_F(AppModelLoginItem, TheStatusIsTheServicesWhenItIsAskedFor) {
  for (const auto status : {LoginItemStatus::enabled, LoginItemStatus::requiresApproval, LoginItemStatus::notFound,
                            LoginItemStatus::notRegistered}) {
    loginItems.current = status;
    model->refreshLoginItemStatus();
    EXPECT_EQ(*model->loginItemStatus, status);
  }
}

TEST_F(AppModelLoginItem, WhatBecameAnotherByItselfIsTold) {
  loginItems.current = LoginItemStatus::enabled;
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::notRegistered);
  changes.clear();
  loginItems.changed();
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::enabled);
  EXPECT_EQ(changesOf(ModelField::loginItemStatus), 1U);
}

TEST_F(AppModelLoginItem, TurningItRegistersAndUnregisters) {
  model->setOpensAtLogin(true);
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::enabled);
  model->setOpensAtLogin(false);
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::notRegistered);
  loginItems.afterRegistering = LoginItemStatus::requiresApproval;
  model->setOpensAtLogin(true);
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::requiresApproval);
  model->setOpensAtLogin(false);
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::notRegistered) << "what waits is turned off too";
  EXPECT_FALSE(*model->settingsError);
}

TEST_F(AppModelLoginItem, AProblemIsShownInTheSystemsWordsWithWhereToLook) {
  loginItems.problem = QStringLiteral("The disk is full.");
  model->setOpensAtLogin(true);
  EXPECT_EQ(shown().title, QStringLiteral("Couldn’t Turn On Launch at Login"));
  EXPECT_EQ(shown().message,
            QStringLiteral("The disk is full. Check Quillmere among the programs that your desktop starts at login, "
                           "then try again."));
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::notRegistered);
  loginItems.current = LoginItemStatus::enabled;
  model->setOpensAtLogin(false);
  EXPECT_EQ(shown().title, QStringLiteral("Couldn’t Turn Off Launch at Login"));
  EXPECT_EQ(*model->loginItemStatus, LoginItemStatus::enabled) << "as it is";
}

TEST_F(AppModelLoginItem, TheDesktopsSettingsAreOpenedWhereThereAreSome) {
  EXPECT_TRUE(model->canOpenLoginItemSettings());
  model->openLoginItemSettings();
  EXPECT_EQ(loginItems.settingsOpened, 1);
  loginItems.hasSettings = false;
  EXPECT_FALSE(model->canOpenLoginItemSettings());
}

}  // namespace
}  // namespace quillmere::testing
