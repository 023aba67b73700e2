#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelArrival : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
};

TEST_F(AppModelArrival, AFileThatIsGoneWhenItIsReportedHasNoRecord) {
  launchWatching();
  monitor.onScreenshot(shots.appending("gone.png"));
  monitor.onArrivedScreenshot(shots.appending("gone.png"));
  EXPECT_EQ(model->items().size(), 0u);
  EXPECT_EQ(monitor.unknown, (std::vector{shots.appending("gone.png"), shots.appending("gone.png")}))
      << "one that comes under the name is new";
}

TEST_F(AppModelArrival, AScreenshotBecomesAPendingRecordOnTopOfTheList) {
  arrive("before.png");
  captureKinds[shots.appending("shot.png").path()] = CaptureKind::window;
  advance(7);
  const UUID id = arrive("shot.png");
  const ScreenshotItem record = item(id);
  EXPECT_EQ(record.url, shots.appending("shot.png"));
  EXPECT_EQ(record.createdAt, now());
  EXPECT_EQ(record.state, State::pending);
  EXPECT_EQ(record.expiresAt, std::nullopt);
  EXPECT_EQ(record.fileIdentity, identityOf(record.url));
  EXPECT_EQ(record.captureKind, CaptureKind::window);
  EXPECT_EQ(record.arrivedFromElsewhere, std::nullopt);
  EXPECT_EQ(record.suggestedName, std::nullopt);
  EXPECT_EQ(record.sourceItemID, std::nullopt);
  EXPECT_EQ(record.fileBookmark, FakeSecurityScope::bookmarkOf(record.url));
  EXPECT_EQ(model->items()[0].id, id);
  EXPECT_EQ(savedRecord(id), record);
}

TEST_F(AppModelArrival, TheRecordIsSavedBeforeItsPopupShows) {
  bool wasOnDisk = false;
  const Connection watching = model->changed.connect([&](const ModelChange& change) {
    if (change.field == ModelField::promptQueue) wasOnDisk = savedRecords().size() == 1;
  });
  arrive("shot.png");
  EXPECT_TRUE(wasOnDisk);
}

TEST_F(AppModelArrival, TheFolderHasReceivedAScreenshot) {
  EXPECT_FALSE(*model->settings().watchFolderHasReceivedScreenshot);
  arrive("shot.png");
  EXPECT_TRUE(*model->settings().watchFolderHasReceivedScreenshot);
  EXPECT_EQ(settingsOnDisk()["quillmere.watch-folder-received-screenshot"], QJsonValue(true));
}

TEST_F(AppModelArrival, SameURLReportedTwiceGivesOneRecordAndOnePopup) {
  const UUID id = arrive("shot.png");
  monitor.onScreenshot(shots.appending("shot.png"));
  monitor.onArrivedScreenshot(shots.appending("shot.png"));
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_THAT(presenter.presented, ElementsAre(id));
}

TEST_F(AppModelArrival, SameFileUnderAnotherSpellingOfItsPathGivesOneRecord) {
  arrive("shot.png");
  std::filesystem::create_directory_symlink(shots.path(), home.file("link").path());
  monitor.onScreenshot(home.file("link").appending("shot.png"));
  monitor.onScreenshot(FileURL::fromPath(shots.path() + "/../shots/./shot.png"));
  EXPECT_EQ(model->items().size(), 1u);
}

TEST_F(AppModelArrival, RenamedScreenshotKeepsItsRecordAndItsPlaceInTheQueue) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID third = arrive("third.png");
  const ScreenshotItem before = item(second);
  const FileURL renamed = shots.appending("second again.png");
  moveFile(before.url, renamed);
  advance(30);
  wasSaved();
  monitor.onScreenshot(renamed);
  EXPECT_EQ(model->items().size(), 3u);
  ScreenshotItem expected = before;
  expected.url = renamed;
  expected.fileBookmark = FakeSecurityScope::bookmarkOf(renamed);
  EXPECT_EQ(item(second), expected);
  EXPECT_THAT(queue(), ElementsAre(first, second, third));
  EXPECT_THAT(presenter.presented, ElementsAre(first));
  EXPECT_TRUE(wasSaved());
  EXPECT_EQ(savedRecord(second), expected);
}

TEST_F(AppModelArrival, RenamedScreenshotKeepsWhatAnalysisFound) {
  auto stored = storedItem(1, "named.png", State::permanent);
  stored.recognizedText = "Some text";
  stored.imageDescription = "A window";
  stored.suggestedName = "A name";
  storeRecords({stored});
  launchWatching();
  moveFile(stored.url, shots.appending("renamed.png"));
  monitor.onArrivedScreenshot(shots.appending("renamed.png"));
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_EQ(item(uuid(1)).recognizedText, stored.recognizedText);
  EXPECT_EQ(item(uuid(1)).imageDescription, stored.imageDescription);
  EXPECT_EQ(item(uuid(1)).suggestedName, stored.suggestedName);
  EXPECT_EQ(item(uuid(1)).createdAt, stored.createdAt);
  EXPECT_EQ(stateOf(uuid(1)), State::permanent);
}

TEST_F(AppModelArrival, RenamedTemporaryScreenshotIsKept) {
  const UUID id = arriveTemporary("shot.png");
  moveFile(shots.appending("shot.png"), shots.appending("wanted.png"));
  monitor.onScreenshot(shots.appending("wanted.png"));
  EXPECT_EQ(stateOf(id), State::permanent);
  EXPECT_EQ(item(id).expiresAt, std::nullopt);
  EXPECT_EQ(scheduledAt(id), std::nullopt);
}

TEST_F(AppModelArrival, RenamedScreenshotIsAvailableAgain) {
  const UUID id = arrive("shot.png");
  const FileURL url = item(id).url;
  makeUnavailable(id);
  moveFile(home.file("hidden shot.png"), shots.appending("back.png"));
  dataless.insert(shots.appending("back.png").path());
  ubiquitous.insert(shots.appending("back.png").path());
  monitor.onScreenshot(shots.appending("back.png"));
  EXPECT_EQ(item(id).url, shots.appending("back.png"));
  EXPECT_FALSE(model->unavailableItemIDs->contains(id));
  EXPECT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_TRUE(model->iCloudItemIDs->contains(id));
}

TEST_F(AppModelArrival, BookmarkOfARenamedScreenshotSurvivesWhenNoneCanBeMade) {
  const UUID id = arrive("shot.png");
  moveFile(shots.appending("shot.png"), shots.appending("renamed.png"));
  scope.refusesBookmarks = true;
  monitor.onScreenshot(shots.appending("renamed.png"));
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(shots.appending("shot.png")));
}

TEST_F(AppModelArrival, CopyOfATrackedFileBecomesANewRecord) {
  const UUID original = arrive("shot.png");
  std::filesystem::copy_file(shots.appending("shot.png").path(), shots.appending("copy.png").path());
  monitor.onScreenshot(shots.appending("copy.png"));
  EXPECT_EQ(model->items().size(), 2u);
  EXPECT_EQ(item(original).url, shots.appending("shot.png"));
}

TEST_F(AppModelArrival, HardLinkWhoseOldPathStillExistsBecomesANewRecord) {
  const UUID original = arrive("shot.png");
  std::filesystem::create_hard_link(shots.appending("shot.png").path(), shots.appending("link.png").path());
  monitor.onScreenshot(shots.appending("link.png"));
  EXPECT_EQ(model->items().size(), 2u);
  EXPECT_EQ(item(original).url, shots.appending("shot.png"));
  EXPECT_EQ(model->items()[0].fileIdentity, item(original).fileIdentity);
}

TEST_F(AppModelArrival, ReusedFileNumberOfAnotherSizeBecomesANewRecord) {
  const UUID original = arrive("shot.png");
  auto other = item(original).fileIdentity;
  other->size = 99999;
  deleteFile(shots.appending("shot.png"));
  writeFile(shots.appending("other.png"), "other");
  identities[shots.appending("other.png").path()] = other;
  monitor.onScreenshot(shots.appending("other.png"));
  EXPECT_EQ(model->items().size(), 2u);
  EXPECT_EQ(item(original).url, shots.appending("shot.png"));
}

TEST_F(AppModelArrival, AnIdentityThatIsNotCompleteIsNotFollowed) {
  const FileIdentity partial{std::nullopt, 77, Date{5}, 4};
  identities[shots.appending("shot.png").path()] = partial;
  identities[shots.appending("renamed.png").path()] = partial;
  const UUID id = arrive("shot.png");
  EXPECT_EQ(item(id).fileIdentity, partial);
  moveFile(shots.appending("shot.png"), shots.appending("renamed.png"));
  monitor.onScreenshot(shots.appending("renamed.png"));
  EXPECT_EQ(model->items().size(), 2u);
}

TEST_F(AppModelArrival, FileWithNoReadableIdentityBecomesARecordWithNone) {
  identities[shots.appending("shot.png").path()] = std::nullopt;
  const UUID id = arrive("shot.png");
  EXPECT_EQ(item(id).fileIdentity, std::nullopt);
  EXPECT_THAT(queue(), ElementsAre(id));
}

TEST_F(AppModelArrival, FileFromElsewhereIsListedWithItsOwnDateAndAsksNothing) {
  const Date lastWeek = now() + -7.0 * 86400;
  identities[shots.appending("old.png").path()] = FileIdentity{"volume", 5, lastWeek, 3};
  arrive("newest so far.png");
  presenter.presented.clear();
  announcer.said.clear();
  const UUID id = arriveFromElsewhere("old.png");
  const ScreenshotItem record = item(id);
  EXPECT_EQ(record.createdAt, lastWeek);
  EXPECT_EQ(record.state, State::permanent);
  EXPECT_EQ(record.arrivedFromElsewhere, true);
  EXPECT_EQ(model->items()[0].id, id);
  EXPECT_EQ(savedRecord(id), record);
  EXPECT_THAT(presenter.presented, IsEmpty());
  EXPECT_THAT(announcer.said, IsEmpty());
  EXPECT_EQ(queue().size(), 1u);
}

TEST_F(AppModelArrival, FileFromElsewhereLeavesTheFolderWithoutAReceivedScreenshot) {
  arriveFromElsewhere("old.png");
  EXPECT_FALSE(*model->settings().watchFolderHasReceivedScreenshot);
}

TEST_F(AppModelArrival, FileFromElsewhereWithNoBirthTimeIsDatedNow) {
  identities[shots.appending("old.png").path()] = FileIdentity{"volume", 5, std::nullopt, 3};
  EXPECT_EQ(item(arriveFromElsewhere("old.png")).createdAt, now());
  identities[shots.appending("other.png").path()] = std::nullopt;
  EXPECT_EQ(item(arriveFromElsewhere("other.png")).createdAt, now());
}

TEST_F(AppModelArrival, EvictedFileFromElsewhereIsKnownAsSuch) {
  dataless.insert(shots.appending("cloud.png").path());
  ubiquitous.insert(shots.appending("cloud.png").path());
  dataless.insert(shots.appending("other.png").path());
  const UUID cloud = arriveFromElsewhere("cloud.png");
  const UUID other = arriveFromElsewhere("other.png");
  EXPECT_EQ(*model->evictedItemIDs, (UUIDSet{cloud, other}));
  EXPECT_EQ(*model->iCloudItemIDs, UUIDSet{cloud});
}

TEST_F(AppModelArrival, AFailedSaveDoesNotStopAnArrival) {
  makeSavingFail();
  const UUID id = arrive("shot.png");
  EXPECT_THAT(presenter.presented, ElementsAre(id));
  EXPECT_EQ(banner(), Issue::recordsNotSaved);
  EXPECT_EQ(*model->promptError, std::nullopt);
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelArrival, ABurstIsIndexedOnceAndLooksAtNoOldFile) {
  for (int i = 0; i < 50; ++i) arrive(std::to_string(i) + ".png");
  const RecordIndex* before = &model->recordIndex();
  const auto key = pathKey(shots.appending("17.png"), watchFolderPaths(shots));
  EXPECT_EQ(before->atPath(key), model->items()[32].id);
  arrive("another.png");
  EXPECT_EQ(&model->recordIndex(), before);
  EXPECT_TRUE(model->recordIndex().atPath(pathKey(shots.appending("another.png"), watchFolderPaths(shots))));
}

// --- A name that is taken again ---

TEST_F(AppModelArrival, ANewCaptureUnderTheNameOfAFileThatHasGoneIsAskedAbout) {
  launchWatching();
  const UUID first = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  reconcileAll();  // under way when the new one comes
  identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  monitor.onScreenshot(shot);
  ASSERT_EQ(queue().size(), 1u);
  const UUID second = queue().front();
  EXPECT_NE(second, first);
  executor.drain();
  EXPECT_FALSE(hasRecord(first)) << "its file is no more";
  EXPECT_EQ(stateOf(second), State::pending);
  EXPECT_EQ(savedRecords().size(), 1u);
}

TEST_F(AppModelArrival, AKnownFileThatWasWrittenAgainIsTheKnownOne) {
  launchWatching();
  const UUID first = arrivePermanent("shot.png");
  writeFile(shots.appending("shot.png"), "longer than before");
  monitor.onScreenshot(shots.appending("shot.png"));
  EXPECT_TRUE(queue().empty());
  EXPECT_TRUE(hasRecord(first));
  EXPECT_EQ(model->items().size(), 1u);
}

}  // namespace
}  // namespace quillmere::testing
