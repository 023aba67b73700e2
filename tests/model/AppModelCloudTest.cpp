#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::IsEmpty;

class AppModelCloud : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }

  /// A screenshot whose data a sync client has taken away.
  UUID evicted(std::string_view name) {
    const UUID id = arrivePermanent(name);
    dataless.insert(item(id).url.path());
    ubiquitous.insert(item(id).url.path());
    reconcileAll();
    EXPECT_TRUE(model->evictedItemIDs->contains(id));
    return id;
  }
  std::optional<DownloadState> downloadState(const UUID& id) const {
    const auto found = model->downloadStates->find(id);
    return found == model->downloadStates->end() ? std::nullopt : std::optional(found->second);
  }
  void bringData(const UUID& id) { dataless.erase(item(id).url.path()); }
  void download(const UUID& id) {
    model->download(id);
    executor.drain();
  }
};

TEST_F(AppModelCloud, OnlyAnEvictedReachableFileOfAClientThatCanBeAskedCanBeDownloaded) {
  const UUID here = arrivePermanent("here.png");
  EXPECT_FALSE(model->canDownload(here));
  const UUID there = evicted("there.png");
  EXPECT_TRUE(model->canDownload(there));
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_FALSE(model->canDownload(there));
}

TEST_F(AppModelCloud, AFileOfAnotherProviderIsNotDownloadedEvenIfAsked) {
  const UUID id = arrivePermanent("shot.png");
  dataless.insert(item(id).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_FALSE(model->canDownload(id));
  download(id);
  EXPECT_THAT(downloads, IsEmpty());
  EXPECT_FALSE(downloadState(id));
}

TEST_F(AppModelCloud, NothingIsDownloadedUnasked) {
  evicted("shot.png");
  advance(3600);
  EXPECT_THAT(downloads, IsEmpty());
}

TEST_F(AppModelCloud, ADownloadIsRequestedThenUnderWayThenHere) {
  const UUID id = evicted("shot.png");
  executor.holdBackground();
  model->download(id);
  EXPECT_EQ(downloadState(id), DownloadState::requesting);
  EXPECT_THAT(downloads, IsEmpty());
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(downloadState(id), DownloadState::downloading);
  EXPECT_EQ(downloads.size(), 1u);
  advance(2);
  EXPECT_EQ(downloadState(id), DownloadState::downloading);
  bringData(id);
  advance(2);
  EXPECT_FALSE(downloadState(id));
  EXPECT_FALSE(model->evictedItemIDs->contains(id));
  EXPECT_FALSE(model->iCloudItemIDs->contains(id));
}

TEST_F(AppModelCloud, DataThatIsBackBeforeTheFirstLookEndsAtThatLook) {
  const UUID id = evicted("shot.png");
  download(id);
  bringData(id);
  advance(1.9);
  EXPECT_EQ(downloadState(id), DownloadState::downloading);
  advance(0.1);
  EXPECT_FALSE(downloadState(id));
}

TEST_F(AppModelCloud, ASecondRequestWhileOneRunsIsNone) {
  const UUID id = evicted("shot.png");
  download(id);
  download(id);
  EXPECT_EQ(downloads.size(), 1u);
}

TEST_F(AppModelCloud, ARefusalIsAStateAndCanBeTriedAgain) {
  const UUID id = evicted("shot.png");
  refusesDownloads = true;
  download(id);
  EXPECT_EQ(downloadState(id), DownloadState::refused);
  EXPECT_TRUE(model->canDownload(id));
  EXPECT_FALSE(*model->inboxError);
  refusesDownloads = false;
  download(id);
  EXPECT_EQ(downloadState(id), DownloadState::downloading);
}

TEST_F(AppModelCloud, AfterTwoMinutesItStallsWithSixtyLooksAtMost) {
  const UUID id = evicted("shot.png");
  download(id);
  datalessLooks = 0;
  advance(119);
  EXPECT_EQ(downloadState(id), DownloadState::downloading);
  advance(1);
  EXPECT_EQ(downloadState(id), DownloadState::stalled);
  EXPECT_EQ(datalessLooks, 60);
  advance(600);
  EXPECT_EQ(datalessLooks, 60);
  EXPECT_TRUE(model->canDownload(id));
}

TEST_F(AppModelCloud, DataThatComesAfterTheStallIsSeenByReconciliation) {
  const UUID id = evicted("shot.png");
  download(id);
  advance(120);
  ASSERT_EQ(downloadState(id), DownloadState::stalled);
  bringData(id);
  reconcileAll();
  EXPECT_FALSE(downloadState(id));
  EXPECT_FALSE(model->evictedItemIDs->contains(id));
}

TEST_F(AppModelCloud, ARemovedRecordEndsItsDownload) {
  const UUID id = evicted("shot.png");
  download(id);
  model->removeRecords({id});
  EXPECT_THAT(*model->downloadStates, IsEmpty());
  datalessLooks = 0;
  advance(600);
  EXPECT_EQ(datalessLooks, 0);
}

TEST_F(AppModelCloud, ARemovalWhileTheRequestIsOutEndsIt) {
  const UUID id = evicted("shot.png");
  executor.holdBackground();
  model->download(id);
  model->removeRecords({id});
  executor.runHeldBackground();
  executor.drain();
  EXPECT_THAT(*model->downloadStates, IsEmpty());
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelCloud, AFileThatBecomesUnreachableEndsItsDownload) {
  const UUID id = evicted("shot.png");
  download(id);
  ejectDisk();
  report(WatcherStatus::volumeNotConnected);
  EXPECT_FALSE(downloadState(id));
  EXPECT_FALSE(model->evictedItemIDs->contains(id));
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelCloud, AfterARenameInTheProgramTheDownloadGoesOnWithTheOldPlace) {
  const UUID id = evicted("shot.png");
  download(id);
  finish(model->rename(id, "renamed", ErrorScope::inbox));
  dataless.insert(item(id).url.path());
  ASSERT_EQ(downloadState(id), DownloadState::downloading);
  dataless.clear();
  advance(2);
  EXPECT_FALSE(downloadState(id));
  EXPECT_FALSE(model->evictedItemIDs->contains(id));
  EXPECT_EQ(item(id).url, shots.appending("renamed.png"));
}

TEST_F(AppModelCloud, TheRequestGoesToWhereTheBookmarkLeadsUnderItsAccess) {
  const UUID id = evicted("shot.png");
  const FileURL moved = shots.appending("moved.png");
  moveFileFollowed(item(id).url, moved);
  const int starts = scope.starts;
  download(id);
  EXPECT_THAT(downloads, ::testing::ElementsAre(moved));
  EXPECT_GT(scope.starts, starts);
  EXPECT_EQ(scope.starts - scope.stops, scope.openCount());
}

TEST_F(AppModelCloud, APlaceholderOfAnotherNameKeepsItsRecordAsEvicted) {
  const UUID id = arriveTemporary("shot.png");
  const FileURL url = item(id).url;
  deleteFile(url);
  dataless.insert(url.path());
  ubiquitous.insert(url.path());
  reportRemoval({url});
  ASSERT_TRUE(hasRecord(id));
  EXPECT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_TRUE(model->canDownload(id));
  // Its time runs out without it: neither the record goes nor anything is thrown away.
  advance(3600);
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelCloud, TheModelMayGoDuringADownload) {
  const UUID id = evicted("shot.png");
  download(id);
  executor.holdBackground();
  advance(2);
  model.reset();
  executor.runHeldBackground();
  executor.drain();
  advance(600);
}

TEST_F(AppModelCloud, TheModelMayGoWhileALookFindsTheData) {
  const UUID id = evicted("shot.png");
  download(id);
  bringData(id);
  executor.holdBackground();
  advance(2);
  EXPECT_EQ(executor.heldBackground(), 1u);
  model.reset();
  executor.runHeldBackground();
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

}  // namespace
}  // namespace quillmere::testing
