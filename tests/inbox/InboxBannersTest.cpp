#include "inbox/InboxBanners.h"

#include <QtWidgets/QPushButton>

#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

using testing::Issue;

class InboxBannerContentTest : public testing::ModelFixture {
 protected:
  InboxBannerContent content(bool showsFolderBanner = true) const {
    return InboxBannerContent::make(*model, showsFolderBanner);
  }
  const QString choose = localized("Choose Screenshot Folder…");
};

TEST_F(InboxBannerContentTest, WhileAllIsWellThereIsNone) {
  launchWatching();
  EXPECT_EQ(content().folder, std::nullopt);
  EXPECT_EQ(content().background, std::nullopt);
}

TEST_F(InboxBannerContentTest, WithoutAFolderItAsksForOne) {
  launch();
  const auto banner = content().folder;
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->symbol, QStringLiteral("folder.badge.questionmark"));
  EXPECT_EQ(banner->action, choose);
  EXPECT_EQ(banner->help, std::nullopt);
  EXPECT_FALSE(content(false).folder) << "not while the set-up asks the same";
}

TEST_F(InboxBannerContentTest, AFolderThatCannotBeReadIsToBeChosenAgain) {
  launchWatching();
  moveFile(shots, away);
  report(WatcherStatus::notFound);
  for (const bool showsFolderBanner : {true, false}) {
    const auto banner = content(showsFolderBanner).folder;
    ASSERT_TRUE(banner);
    EXPECT_EQ(banner->symbol, QStringLiteral("exclamationmark.triangle"));
    EXPECT_EQ(
        banner->message,
        localized("Quillmere can’t access the screenshot folder. Choose it again to keep finding new screenshots."));
    EXPECT_EQ(banner->action, choose);
    EXPECT_EQ(banner->help, HelpAnchor::troubleshooting);
  }
}

TEST_F(InboxBannerContentTest, ADiskThatIsAwaySaysSoItself) {
  launchWatching();
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  const auto banner = content().folder;
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->message, statusText(WatcherStatus::volumeNotConnected));
  EXPECT_EQ(banner->help, HelpAnchor::troubleshooting);
  connectDisk();
  report(WatcherStatus::watching);
  EXPECT_FALSE(content().folder);
}

TEST_F(InboxBannerContentTest, AListThatWasNotSavedCanBeDismissed) {
  launchWatching();
  makeSavingFail();
  model->saveNow();
  ASSERT_EQ(banner(), Issue::recordsNotSaved);
  const auto shown = content().background;
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->message, message(**model->backgroundIssue));
  EXPECT_EQ(shown->action, localized("Dismiss"));
  makeSavingWork();
  model->saveNow();
  EXPECT_FALSE(content().background);
}

TEST_F(InboxBannerContentTest, ExpiredScreenshotsThatStayedCanBeTriedAgain) {
  launchWatching();
  const UUID id = arriveTemporary("1.png", TemporaryDuration::oneMinute);
  files.refuse(item(id).url);
  for (int i = 0; i < 20 && !banner(); ++i) advance(60);
  ASSERT_EQ(banner(), Issue::expiredScreenshotsNotTrashed);
  const auto shown = content().background;
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->action, localized("Try Again"));
  EXPECT_EQ(shown->message, message(**model->backgroundIssue));
}

TEST_F(InboxBannerContentTest, TheTwoAreIndependent) {
  launch();
  makeSavingFail();
  model->saveNow();
  EXPECT_TRUE(content().folder);
  EXPECT_TRUE(content().background);
}

TEST_F(InboxBannerContentTest, AnotherFolderOfTheDesktopsHasAPageOfTheHelpAndCanBeWavedAway) {
  location.value = away.displayPath();
  launchWatching();
  const auto banner = content().folder;
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->action, localized("Use This Folder…"));
  EXPECT_EQ(banner->panelStart, away);
  EXPECT_EQ(banner->help, HelpAnchor::folderMismatch);
  EXPECT_TRUE(banner->isDismissible);
}

class InboxBannersTest : public InboxBannerContentTest {
 protected:
  QPushButton& help() const {
    for (auto* button : banners->findChildren<QPushButton*>()) {
      if (button->accessibleName() == QStringLiteral("Help")) return *button;
    }
    throw std::logic_error("no button for help");
  }
  void show() {
    banners = std::make_unique<InboxBanners>(
        *model, [this](HelpAnchor anchor) { opened.push_back(anchor); }, nullptr);
    banners->update(true);
  }
  std::unique_ptr<InboxBanners> banners;
  std::vector<HelpAnchor> opened;
};

TEST_F(InboxBannersTest, HelpOpensThePageOfWhatIsShown) {
  location.value = away.displayPath();
  launchWatching();
  show();
  EXPECT_TRUE(help().isVisibleTo(banners.get()));
  help().click();
  moveFile(shots, home.file("moved"));
  report(WatcherStatus::notFound);
  banners->update(true);
  help().click();
  EXPECT_EQ(opened, std::vector({HelpAnchor::folderMismatch, HelpAnchor::troubleshooting}));
}

TEST_F(InboxBannersTest, WhatHasNoPageOffersNone) {
  launch();
  show();
  EXPECT_FALSE(help().isVisibleTo(banners.get()));
}

}  // namespace
}  // namespace quillmere
