#include "inbox/InboxBanners.h"

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
  }
}

TEST_F(InboxBannerContentTest, ADiskThatIsAwaySaysSoItself) {
  launchWatching();
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  const auto banner = content().folder;
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->message, statusText(WatcherStatus::volumeNotConnected));
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

}  // namespace
}  // namespace quillmere
