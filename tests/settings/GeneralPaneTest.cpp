#include "settings/GeneralPane.h"

#include <QtWidgets/QComboBox>

#include "fakes/FakeTray.h"
#include "settings/SettingsFixture.h"

namespace quillmere {
namespace {

constexpr auto kNaming =
    "This is the name the popup’s filename field starts with. You can change it there before choosing Keep or "
    "Temporary.";
constexpr auto kHidden =
    "When it’s hidden, open Quillmere from your desktop’s list of apps to see the Inbox and Settings.";

class GeneralPaneTest : public testing::SettingsFixture {
 protected:
  void show(bool hasUpdater = true) {
    if (hasUpdater) services.updates = &updates;
    services.confirmClearingRecords = [this] {
      ++questions;
      return confirms;
    };
    pane = &showPane(std::make_unique<GeneralPane>(*model, services, nullptr));
  }
  void setLogin(LoginItemStatus status) {
    loginItems.current = status;
    pane->appear();
  }
  QCheckBox& login() const { return box("Open Quillmere at login"); }
  QCheckBox& checks() const { return box("Automatically check for updates"); }

  SettingsServices services;
  SoftwareUpdateModel updates;
  GeneralPane* pane = nullptr;
  int questions = 0;
  bool confirms = true;
};

TEST_F(GeneralPaneTest, WithoutATrayItSaysHowToComeBackWhateverIsChosen) {
  constexpr auto kNoTray =
      "This desktop shows no tray icons. Quillmere goes on watching when its windows are closed. To come back to it, "
      "open "
      "it again from your launcher.";
  testing::FakeTray tray;
  services.tray = &tray;
  show();
  EXPECT_TRUE(says(kNoTray));
  model->setMenuBarEnabled(false);
  EXPECT_TRUE(says(kNoTray));
  EXPECT_FALSE(says(kHidden));
  tray.set(true);
  EXPECT_FALSE(says(kNoTray));
  EXPECT_TRUE(says(kHidden));
}

TEST_F(GeneralPaneTest, EachStatusHasItsToggleAndItsRow) {
  constexpr auto kWaiting =
      "Your desktop hasn’t allowed this yet. Allow it in your desktop’s settings, or turn this off and on again to be "
      "asked once more.";
  constexpr auto kMissing =
      "Opening at login isn’t available for this copy of Quillmere. Install Quillmere, open the installed one, and try "
      "again.";
  show();
  struct Row {
    LoginItemStatus status;
    bool isOn, isEnabled, isWaiting, isMissing;
  };
  for (const Row& row : {Row{LoginItemStatus::enabled, true, true, false, false},
                         Row{LoginItemStatus::notRegistered, false, true, false, false},
                         Row{LoginItemStatus::requiresApproval, true, true, true, false},
                         Row{LoginItemStatus::notFound, false, false, false, true}}) {
    setLogin(row.status);
    EXPECT_EQ(login().isChecked(), row.isOn);
    EXPECT_EQ(login().isEnabled(), row.isEnabled);
    EXPECT_EQ(says(kWaiting), row.isWaiting);
    EXPECT_EQ(isShown(button("Open Login Settings")), row.isWaiting);
    EXPECT_EQ(says(kMissing), row.isMissing);
  }
}

TEST_F(GeneralPaneTest, TheSettingsOfTheDesktopAreOfferedWhereThereAreSome) {
  show();
  setLogin(LoginItemStatus::requiresApproval);
  button("Open Login Settings").click();
  EXPECT_EQ(loginItems.settingsOpened, 1);
  loginItems.hasSettings = false;
  pane->refresh();
  EXPECT_FALSE(isShown(button("Open Login Settings")));
}

TEST_F(GeneralPaneTest, TheToggleTurnsItOnAndOff) {
  show();
  setLogin(LoginItemStatus::notRegistered);
  login().click();
  EXPECT_EQ(loginItems.current, LoginItemStatus::enabled);
  EXPECT_TRUE(login().isChecked());
  setLogin(LoginItemStatus::requiresApproval);
  login().click();
  EXPECT_EQ(loginItems.current, LoginItemStatus::notRegistered) << "what waits is turned off";
  EXPECT_FALSE(login().isChecked());
}

TEST_F(GeneralPaneTest, WhatCouldNotBeTurnedShowsAsItIs) {
  show();
  setLogin(LoginItemStatus::notRegistered);
  loginItems.problem = QStringLiteral("No space left.");
  login().click();
  EXPECT_FALSE(login().isChecked());
  ASSERT_TRUE(*model->settingsError);
  EXPECT_EQ((*model->settingsError)->title, QStringLiteral("Couldn’t Turn On Launch at Login"));
}

TEST_F(GeneralPaneTest, WhatTheDesktopTookAndCouldNotDoIsSaidUntilItIsTurnedAgain) {
  constexpr auto kNotOn = "Your desktop couldn’t turn this on. Try again, or turn it on in your desktop’s settings.";
  constexpr auto kNotOff = "Your desktop couldn’t turn this off. Try again, or turn it off in your desktop’s settings.";
  const auto answers = [&](LoginItemStatus status) {
    loginItems.current = status;
    loginItems.changed();
  };
  loginItems.afterRegistering = LoginItemStatus::requiresApproval;
  show();
  login().click();
  EXPECT_FALSE(says(kNotOn));
  answers(LoginItemStatus::notRegistered);
  EXPECT_FALSE(login().isChecked());
  EXPECT_TRUE(says(kNotOn));
  EXPECT_TRUE(isShown(button("Open Login Settings")));
  login().click();
  EXPECT_FALSE(says(kNotOn));
  answers(LoginItemStatus::enabled);
  login().click();
  EXPECT_FALSE(says(kNotOff));
  answers(LoginItemStatus::enabled);
  EXPECT_TRUE(login().isChecked());
  EXPECT_TRUE(says(kNotOff));
  pane->appear();
  EXPECT_FALSE(says(kNotOff)) << "the person may have been elsewhere about it";
}

TEST_F(GeneralPaneTest, WhatWasRefusedAtOnceIsNoLateFailure) {
  show();
  loginItems.problem = QStringLiteral("No space left.");
  login().click();
  EXPECT_FALSE(says("Your desktop couldn’t turn this on. Try again, or turn it on in your desktop’s settings."));
}

TEST_F(GeneralPaneTest, AStatusThatChangesByItselfIsFollowed) {
  show();
  setLogin(LoginItemStatus::requiresApproval);
  loginItems.current = LoginItemStatus::enabled;
  loginItems.changed();
  EXPECT_FALSE(isShown(button("Open Login Settings")));
}

TEST_F(GeneralPaneTest, TheTrayIconIsHiddenWithAWordOnWhereToFindTheProgram) {
  show();
  EXPECT_FALSE(says(kHidden));
  expectToWriteAndFollow({{"Show Quillmere in the system tray", [&] { return *model->settings().menuBarEnabled; },
                           [&](bool isOn) { model->setMenuBarEnabled(isOn); }}});
  model->setMenuBarEnabled(false);
  EXPECT_TRUE(says(kHidden));
}

TEST_F(GeneralPaneTest, WithoutAnUpdaterThereIsNothingToCheckBy) {
  show(false);
  EXPECT_FALSE(checks().isEnabled());
  show(true);
  EXPECT_FALSE(checks().isEnabled());
  updates.setChecksForUpdatesAutomaticallyAction = [this](bool isOn) { updates.setChecksAutomatically(isOn); };
  updates.setCanCheckForUpdates(true);
  EXPECT_TRUE(checks().isEnabled());
}

TEST_F(GeneralPaneTest, SaysWhereUpdatesComeFrom) {
  constexpr auto kByItself =
      "Quillmere checks once a day and always asks before it downloads or installs anything. You can check any time "
      "with "
      "Check for Updates… in the File menu.";
  constexpr auto kByPackages =
      "This copy of Quillmere doesn’t look for updates itself. They come with your system’s packages.";
  show();
  EXPECT_FALSE(says(kByItself));
  EXPECT_TRUE(says(kByPackages));
  updates.setChecksForUpdatesAutomaticallyAction = [](bool) {};
  updates.setCanCheckForUpdates(true);
  EXPECT_TRUE(says(kByItself));
  EXPECT_FALSE(says(kByPackages));
}

TEST_F(GeneralPaneTest, TheUpdaterHasTheLastWord) {
  bool obeys = true;
  updates.setChecksForUpdatesAutomaticallyAction = [&](bool isOn) {
    if (obeys) updates.setChecksAutomatically(isOn);
  };
  show();
  checks().click();
  EXPECT_TRUE(updates.checksForUpdatesAutomatically());
  EXPECT_TRUE(checks().isChecked());
  obeys = false;
  checks().click();
  EXPECT_TRUE(checks().isChecked());
  updates.setChecksAutomatically(false);
  EXPECT_FALSE(checks().isChecked());
}

TEST_F(GeneralPaneTest, TheFootersSecondLineIsAboutTheSuggestedName) {
  show();
  auto& naming = find<QComboBox>(QStringLiteral("New screenshots keep"));
  EXPECT_EQ(naming.currentText(), QStringLiteral("The original filename"));
  EXPECT_TRUE(says(kNaming));
  naming.setFocus();
  QTest::keyClick(&naming, Qt::Key_Down);
  EXPECT_EQ(*model->settings().screenshotNaming, ScreenshotNaming::suggested);
  EXPECT_TRUE(says(QString::fromUtf8(kNaming) +
                   QStringLiteral("\nIf no suggested name is ready, the original filename is used.")));
  model->setScreenshotNaming(ScreenshotNaming::original);
  EXPECT_EQ(naming.currentIndex(), 0);
  EXPECT_TRUE(says(kNaming));
}

TEST_F(GeneralPaneTest, RecordsAreForgottenOnceThatIsConfirmed) {
  arrive("1.png");
  show();
  EXPECT_TRUE(says("Removes every screenshot from the Inbox. The files stay where they are."));
  confirms = false;
  button("Clear Inbox Records…").click();
  EXPECT_EQ(questions, 1);
  EXPECT_EQ(model->items().size(), 1U);
  confirms = true;
  button("Clear Inbox Records…").click();
  EXPECT_EQ(model->items().size(), 0U);
  EXPECT_TRUE(std::filesystem::exists(shots.appending("1.png").path()));
}

}  // namespace
}  // namespace quillmere
