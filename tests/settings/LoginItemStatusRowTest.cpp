#include "settings/LoginItemStatusRow.h"

#include <gtest/gtest.h>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(LoginItemContentTest, SaysNothingOfWhatIsAsItWasSet) {
  const auto on = LoginItemContent::make(LoginItemStatus::enabled, true);
  EXPECT_TRUE(on.isOn && on.canBeTurned && on.text.isEmpty());
  const auto off = LoginItemContent::make(LoginItemStatus::notRegistered, true);
  EXPECT_TRUE(!off.isOn && off.canBeTurned && off.text.isEmpty());
}

TEST(LoginItemContentTest, WhatWaitsIsOnAndLeadsToTheSettings) {
  const auto waiting = LoginItemContent::make(LoginItemStatus::requiresApproval, true);
  EXPECT_TRUE(waiting.isOn && waiting.canBeTurned && waiting.offersSettings);
  EXPECT_EQ(waiting.symbol, QString());
  EXPECT_FALSE(LoginItemContent::make(LoginItemStatus::requiresApproval, false).offersSettings);
}

TEST(LoginItemContentTest, WhatCannotBeIsOffAndWarns) {
  const auto missing = LoginItemContent::make(LoginItemStatus::notFound, true);
  EXPECT_FALSE(missing.isOn || missing.canBeTurned || missing.offersSettings);
  EXPECT_EQ(missing.symbol, QStringLiteral("exclamationmark.triangle"));
}

TEST(LoginItemContentTest, WarnsWhereItIsNotAsTheDesktopWasAsked) {
  const auto content = [](LoginItemStatus status, bool asked) { return LoginItemContent::make(status, true, asked); };
  const auto off = content(LoginItemStatus::notRegistered, true);
  EXPECT_TRUE(!off.isOn && off.canBeTurned && off.offersSettings && !off.text.isEmpty() && !off.symbol.isEmpty());
  const auto on = content(LoginItemStatus::enabled, false);
  EXPECT_TRUE(on.isOn && on.canBeTurned && on.offersSettings && !on.text.isEmpty() && !on.symbol.isEmpty());
  EXPECT_NE(on.text, off.text);
  EXPECT_EQ(content(LoginItemStatus::enabled, true).text, QString());
  EXPECT_EQ(content(LoginItemStatus::notRegistered, false).text, QString());
}

TEST(LoginItemStatusRowTest, TakesNoRoomWithoutAText) {
  QWidget window;
  LoginItemStatusRow row(&window);
  EXPECT_FALSE(row.isVisibleTo(&window));
  row.show(LoginItemContent::make(LoginItemStatus::notFound, true));
  EXPECT_TRUE(row.isVisibleTo(&window));
  EXPECT_FALSE(row.findChild<QPushButton*>()->isVisibleTo(&window));
  row.show(LoginItemContent::make(LoginItemStatus::enabled, true));
  EXPECT_FALSE(row.isVisibleTo(&window));
}

TEST(LoginItemStatusRowTest, ItsButtonAsksForTheSettings) {
  QWidget window;
  LoginItemStatusRow row(&window);
  row.show(LoginItemContent::make(LoginItemStatus::requiresApproval, true));
  int opened = 0;
  row.findChild<QPushButton*>()->click();
  row.onOpenSettings = [&] { ++opened; };
  row.findChild<QPushButton*>()->click();
  EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace quillmere
