#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Reason = AppModel::DisposalReason;

class AppModelDisposal : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }

  void dispose(const UUID& id, Reason reason = Reason::chosen) {
    finish(model->disposeItem(item(id), ErrorScope::inbox, reason));
  }
  void disposeAll(const std::vector<UUID>& ids, Reason reason = Reason::chosen) {
    std::vector<ScreenshotItem> batch;
    for (const UUID& id : ids) batch.push_back(item(id));
    finish(model->disposeBatch(batch, ErrorScope::inbox, reason));
  }
  QString title() const { return *model->inboxError ? (*model->inboxError)->title : QString(); }
  QString text() const { return *model->inboxError ? (*model->inboxError)->message : QString(); }
};

TEST_F(AppModelDisposal, TheFileGoesToTrashAndItsRecordIsForgotten) {
  const UUID id = arrivePermanent("shot.png");
  dispose(id);
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(hasRecord(id));
  EXPECT_THAT(savedRecords(), IsEmpty());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelDisposal, ReasonsDecideBetweenTrashAndDeleting) {
  struct Row {
    Reason reason;
    bool chosenImmediately;
    bool expiredImmediately;
    bool deletes;
  };
  const Row rows[] = {
      {Reason::chosen, false, false, false},
      {Reason::chosen, false, true, false},
      {Reason::chosen, true, false, true},
      {Reason::expired, false, false, false},
      {Reason::expired, true, false, false},
      {Reason::expired, false, true, true},
      {Reason::deleteImmediately, false, false, true},
      {Reason::deleteImmediately, true, true, true},
  };
  for (const Row& row : rows) {
    model->setDeletesChosenImmediately(row.chosenImmediately);
    model->setDeletesExpiredImmediately(row.expiredImmediately);
    files.trashCalls = files.removeCalls = 0;
    dispose(arrivePermanent("shot.png"), row.reason);
    EXPECT_EQ(files.removeCalls, row.deletes ? 1 : 0);
    EXPECT_EQ(files.trashCalls, row.deletes ? 0 : 1);
    EXPECT_FALSE(fileExists(shots.appending("shot.png")));
    std::filesystem::remove_all(trash.path());
  }
}

TEST_F(AppModelDisposal, ShowingTheDeleteCommandChangesNoDisposal) {
  model->setShowsDeleteImmediately(true);
  dispose(arrivePermanent("shot.png"));
  EXPECT_EQ(files.removeCalls, 0);
}

TEST_F(AppModelDisposal, FileDeletedByHandInAReachableFolderCountsAsRemoved) {
  const UUID id = arrivePermanent("shot.png");
  deleteFile(shots.appending("shot.png"));
  dispose(id);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_EQ(*model->inboxError, std::nullopt);
  EXPECT_THAT(savedRecords(), IsEmpty());
}

TEST_F(AppModelDisposal, FileOnAnEjectedDiskIsUnreachableAndItsRecordStays) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem before = item(id);
  ejectDisk();
  dispose(id);
  EXPECT_EQ(item(id), before);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_EQ(title(), "Couldn’t Move to Trash");
  EXPECT_EQ(text(),
            "“shot.png” is on a disk or in a folder that isn’t available. Connect the disk or choose the folder again, "
            "then try again.");
}

TEST_F(AppModelDisposal, FileWithAPlaceholderInItsSteadKeepsItsRecord) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem before = item(id);
  deleteFile(before.url);
  dataless.insert(before.url.path());
  dispose(id);
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(title(), "Couldn’t Move to Trash");
}

TEST_F(AppModelDisposal, UnreachableFileThatWasToBeDeletedSaysSo) {
  const UUID id = arrivePermanent("shot.png");
  ejectDisk();
  dispose(id, Reason::deleteImmediately);
  EXPECT_EQ(title(), "Couldn’t Delete");
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelDisposal, RefusedTrashKeepsFileAndRecord) {
  const UUID id = arriveTemporary("shot.png");
  const ScreenshotItem before = item(id);
  files.refuse(before.url);
  dispose(id);
  EXPECT_EQ(item(id), before);
  EXPECT_TRUE(fileExists(before.url));
  EXPECT_EQ(title(), "Couldn’t Move to Trash");
  EXPECT_EQ(text(),
            "“shot.png” couldn’t be moved to Trash. It is still in Quillmere. Check that you can change files in its "
            "folder, then try again.");
}

TEST_F(AppModelDisposal, RefusedDeletionHasItsOwnWords) {
  const UUID id = arrivePermanent("shot.png");
  files.refuse(item(id).url);
  dispose(id, Reason::deleteImmediately);
  EXPECT_EQ(title(), "Couldn’t Delete");
  EXPECT_EQ(text(),
            "“shot.png” couldn’t be deleted. It is still in Quillmere. Check that you can change files in its folder, "
            "then try again.");
}

TEST_F(AppModelDisposal, TheErrorNamesTheFileAsItIsCalledNow) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem stale = item(id);
  finish(model->rename(id, "renamed", ErrorScope::inbox));
  files.refuse(shots.appending("renamed.png"));
  finish(model->disposeItem(stale, ErrorScope::inbox, Reason::chosen));
  EXPECT_TRUE(text().startsWith("“renamed.png” couldn’t be moved to Trash."));
}

TEST_F(AppModelDisposal, RecordInTheEditorIsInUseEvenWhenDeletedImmediately) {
  const UUID id = arrivePermanent("shot.png");
  model->protect(id);
  for (const Reason reason : {Reason::chosen, Reason::deleteImmediately}) {
    dispose(id, reason);
    EXPECT_EQ(title(), "Screenshot Is in Use");
    EXPECT_EQ(text(), "Close the crop editor or save dialog before deleting this screenshot.");
  }
  EXPECT_EQ(files.calls(), 0);
  model->unprotect(id);
  dispose(id);
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelDisposal, AnUnknownRecordIsNoError) {
  ScreenshotItem unknown = bareItem(404);
  finish(model->disposeItem(unknown, ErrorScope::inbox, Reason::chosen));
  EXPECT_EQ(*model->inboxError, std::nullopt);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelDisposal, TheErrorShowsWhereThePersonActed) {
  const UUID id = arrivePermanent("shot.png");
  files.refuse(item(id).url);
  finish(model->disposeItem(item(id), ErrorScope::settings, Reason::chosen));
  EXPECT_TRUE(model->settingsError->has_value());
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelDisposal, AScreenshotWhoseDisposalFailedStaysInThePopupWithTheError) {
  const UUID id = arrive("shot.png");
  files.refuse(item(id).url);
  finish(model->disposeItem(*model->promptedItem(), ErrorScope::popup, Reason::chosen));
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_EQ(presenter.visible, id);
  EXPECT_EQ(stateOf(id), State::pending);
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Move to Trash");
}

TEST_F(AppModelDisposal, DisposingOfTheVisibleScreenshotShowsTheNext) {
  arrive("first.png");
  const UUID second = arrive("second.png");
  finish(model->disposeItem(*model->promptedItem(), ErrorScope::popup, Reason::chosen));
  EXPECT_EQ(presenter.visible, second);
  EXPECT_EQ(model->items().size(), 1u);
}

// --- Batches ---

TEST_F(AppModelDisposal, BatchOfThreeWithOneProtectedAndOneRefusedRemovesOneAndShowsOneError) {
  const UUID removed = arrivePermanent("removed.png");
  const UUID open = arrivePermanent("open.png");
  const UUID refused = arrivePermanent("refused.png");
  model->protect(open);
  files.refuse(item(refused).url);
  disposeAll({removed, open, refused});
  EXPECT_FALSE(hasRecord(removed));
  EXPECT_TRUE(hasRecord(open));
  EXPECT_TRUE(hasRecord(refused));
  EXPECT_EQ(savedRecords().size(), 2u);
  EXPECT_EQ(changesOf(ModelField::inboxError), 1u);
  EXPECT_EQ(title(), "Couldn’t Move Every Screenshot to Trash");
  EXPECT_EQ(text(),
            "1 screenshot is open in the crop editor or a save dialog. 1 screenshot couldn’t be moved. Check that you "
            "can change files in its folder. They are still in Quillmere.");
}

TEST_F(AppModelDisposal, BatchSentencesStandInTheirOrderWithPluralForms) {
  std::vector<UUID> ids;
  for (int i = 0; i < 6; ++i) ids.push_back(arrivePermanent("shot " + std::to_string(i) + ".png"));
  model->protect(ids[2]);
  model->protect(ids[5]);
  files.refuse(item(ids[1]).url);
  files.refuse(item(ids[4]).url);
  unreachableFolders.insert(shots.path());
  files.answers[item(ids[0]).url.path()] = FileOutcome::missing;
  files.answers[item(ids[3]).url.path()] = FileOutcome::missing;
  disposeAll(ids, Reason::deleteImmediately);
  EXPECT_EQ(title(), "Couldn’t Delete Every Screenshot");
  EXPECT_EQ(text(),
            "2 screenshots are open in the crop editor or a save dialog. 2 screenshots couldn’t be moved. Check that "
            "you can change files in their folder. 2 screenshots are on a disk or in a folder that isn’t available. "
            "They are still in Quillmere.");
  EXPECT_EQ(model->items().size(), 6u);
  EXPECT_EQ(*model->unavailableItemIDs, (UUIDSet{ids[0], ids[3]}));
}

// --- Another file in the place of the one that was shown ---

TEST_F(AppModelDisposal, AFileThatWasReplacedIsAskedAboutAgain) {
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  finish(model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(title(), "Screenshot Has Changed");
  EXPECT_EQ(text(), "“shot.png” has changed since it was shown. Look at it again, then decide.");
  EXPECT_EQ(savedRecord(id)->fileIdentity->file, 4711u);
  finish(model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_FALSE(hasRecord(id));
}

TEST_F(AppModelDisposal, AReplacementThatHasItsOwnRecordIsNotAdopted) {
  const UUID old = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  moveElsewhere(shot);
  writeFile(shot, "another screenshot");
  identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 18};
  const UUID other = arrivePermanent("shot.png");
  ASSERT_NE(other, old);
  const auto identity = item(old).fileIdentity;
  finish(model->disposeItem(item(old), ErrorScope::inbox, Reason::chosen));
  executor.drain();
  EXPECT_TRUE(fileExists(shot));
  EXPECT_TRUE(hasRecord(other));
  ASSERT_TRUE(hasRecord(old));
  EXPECT_EQ(item(old).fileIdentity, identity);
}

TEST_F(AppModelDisposal, AReplacementOfATemporaryFileIsNotTemporary) {
  const UUID id = arriveTemporary("shot.png");
  identities[shots.appending("shot.png").path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  finish(model->disposeItem(item(id), ErrorScope::inbox, Reason::chosen));
  EXPECT_EQ(stateOf(id), State::permanent);
  advance(100'000);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelDisposal, ALinkInThePlaceOfAFileIsLeftAlone) {
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  deleteFile(shot);
  std::filesystem::create_symlink("/etc/hostname", shot.path());
  for (const Reason reason : {Reason::chosen, Reason::deleteImmediately}) {
    finish(model->disposeItem(item(id), ErrorScope::inbox, reason));
    EXPECT_EQ(title(), "Screenshot Has Changed");
  }
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(hasRecord(id));
}

TEST_F(AppModelDisposal, AFileThatWasWrittenUnderThePopupIsAskedAboutAgain) {
  const UUID id = arrive("shot.png");
  writeFile(shots.appending("shot.png"), "another picture in the same file");
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::popup)), AppModel::ChosenDisposal::refused);
  EXPECT_EQ(files.calls(), 0);
  ASSERT_TRUE(*model->promptError);
  EXPECT_EQ((*model->promptError)->title, QStringLiteral("Screenshot Has Changed"));
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::popup)), AppModel::ChosenDisposal::done);
}

TEST_F(AppModelDisposal, AFileThatWasReplacedUnderTheQuestionIsAskedAboutAgain) {
  setSettings(R"({"quillmere.delete-immediately-chosen":true})");
  launchWatching();
  const UUID id = arrivePermanent("shot.png");
  const FileURL shot = shots.appending("shot.png");
  onDeletionQuestion = [&] { identities[shot.path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7}; };
  confirmsDeletion = true;
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), AppModel::ChosenDisposal::refused);
  EXPECT_TRUE(fileExists(shot));
  onDeletionQuestion = {};
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), AppModel::ChosenDisposal::done);
  EXPECT_FALSE(fileExists(shot));
}

TEST_F(AppModelDisposal, ReplacedFilesOfABatchAreCounted) {
  const UUID first = arrivePermanent("1.png"), second = arrivePermanent("2.png"), third = arrivePermanent("3.png");
  for (const char* name : {"1.png", "2.png"}) {
    identities[shots.appending(name).path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  }
  disposeAll({first, second, third});
  EXPECT_EQ(text(),
            "2 screenshots have changed since they were shown. Look at them again, then decide. They are still in "
            "Quillmere.");
  EXPECT_FALSE(hasRecord(third));
}

TEST_F(AppModelDisposal, WhatAnotherDiskHasUnderTheNameIsLeftAlone) {
  const UUID id = arrivePermanent("shot.png");
  isVolumeMounted = false;
  finish(model->disposeItem(item(id), ErrorScope::inbox, Reason::deleteImmediately));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
}

TEST_F(AppModelDisposal, BatchThatWentWellShowsNothingAndSavesOnce) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID third = arrive("third.png");
  presenter.presented.clear();
  changes.clear();
  disposeAll({first, second});
  EXPECT_EQ(*model->inboxError, std::nullopt);
  EXPECT_EQ(changesOf(ModelField::items), 1u) << "removed together";
  EXPECT_THAT(presenter.presented, ElementsAre(third));
  EXPECT_EQ(savedRecords().size(), 1u);
}

TEST_F(AppModelDisposal, BatchOfUnknownRecordsShowsNoError) {
  wasSaved();
  finish(model->disposeBatch({bareItem(404), bareItem(405)}, ErrorScope::inbox, Reason::chosen));
  EXPECT_EQ(*model->inboxError, std::nullopt);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelDisposal, BatchOfNoneDoesNothing) {
  finish(model->disposeBatch({}, ErrorScope::inbox, Reason::chosen));
  EXPECT_EQ(*model->inboxError, std::nullopt);
}

TEST_F(AppModelDisposal, BatchOfOneUsesTheWordsOfASingleScreenshot) {
  const UUID id = arrivePermanent("shot.png");
  files.refuse(item(id).url);
  disposeAll({id});
  EXPECT_EQ(title(), "Couldn’t Move to Trash");
  EXPECT_TRUE(text().startsWith("“shot.png” couldn’t be moved to Trash."));
}

// --- Forgetting ---

TEST_F(AppModelDisposal, AForgottenRecordLeavesEveryTable) {
  const UUID temporary = arriveTemporary("temporary.png");
  dataless.insert(shots.appending("cloud.png").path());
  ubiquitous.insert(shots.appending("cloud.png").path());
  const UUID cloud = arriveFromElsewhere("cloud.png");
  const UUID lost = arrive("lost.png");
  const UUID stays = arrivePermanent("stays.png");
  makeUnavailable(lost);
  model->setSelectedItemIDs({temporary, cloud, lost, stays});
  model->protect(temporary);
  model->removeRecords({temporary, cloud, lost, uuid(404)});
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_EQ(scheduledAt(temporary), std::nullopt);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{stays});
  EXPECT_THAT(*model->unavailableItemIDs, IsEmpty());
  EXPECT_THAT(*model->evictedItemIDs, IsEmpty());
  EXPECT_THAT(*model->iCloudItemIDs, IsEmpty());
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_TRUE(fileExists(shots.appending("temporary.png"))) << "files stay";
}

TEST_F(AppModelDisposal, AForgottenFileThatIsReportedAgainBecomesANewRecord) {
  const UUID id = arrivePermanent("shot.png");
  model->removeRecords({id});
  monitor.onArrivedScreenshot(shots.appending("shot.png"));
  EXPECT_EQ(model->items().size(), 1u);
  EXPECT_NE(model->items()[0].id, id);
}

TEST_F(AppModelDisposal, ForgettingARecordWhoseExpiryFailedTakesItOutOfTheBanner) {
  const UUID first = arriveTemporary("first.png", TemporaryDuration::oneMinute);
  const UUID second = arriveTemporary("second.png", TemporaryDuration::oneMinute);
  files.refuse(item(first).url);
  files.refuse(item(second).url);
  advance(61);
  ASSERT_EQ((*model->backgroundIssue)->count, 2);
  model->removeRecords({first});
  EXPECT_EQ((*model->backgroundIssue)->count, 1);
  model->removeRecords({second});
  EXPECT_EQ(banner(), std::nullopt);
}

// --- What the person chose ---

using Chosen = AppModel::ChosenDisposal;

class AppModelChosenDisposal : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
};

TEST_F(AppModelChosenDisposal, MovingToTrashAsksNothing) {
  const UUID id = arrive("shot.png");
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::popup)), Chosen::done);
  EXPECT_THAT(deletionQuestions, IsEmpty());
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelChosenDisposal, DeletingAsksFirst) {
  const UUID id = arrive("shot.png");
  model->setDeletesChosenImmediately(true);
  confirmsDeletion = false;
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::declined);
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  confirmsDeletion = true;
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::done);
  EXPECT_EQ(deletionQuestions, (std::vector<QString>{"shot.png", "shot.png"}));
  EXPECT_EQ(files.removeCalls, 1);
}

TEST_F(AppModelChosenDisposal, UnderTheQuestionARecordNeitherExpiresNorGoesFromElsewhere) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  model->setDeletesChosenImmediately(true);
  confirmsDeletion = false;
  onDeletionQuestion = [&] {
    advance(65);
    finish(model->disposeItem(item(id), ErrorScope::popup, AppModel::DisposalReason::deleteImmediately));
    EXPECT_TRUE(hasRecord(id));
    EXPECT_EQ((*model->promptError)->title, "Screenshot Is in Use");
  };
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::declined);
  EXPECT_EQ(files.calls(), 0);
  advance(10);
  EXPECT_FALSE(hasRecord(id)) << "its time goes on after the answer";
}

TEST_F(AppModelChosenDisposal, NothingIsAskedTwiceAtATime) {
  const UUID id = arrive("shot.png");
  model->setDeletesChosenImmediately(true);
  confirmsDeletion = false;
  onDeletionQuestion = [&] { EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::declined); };
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::declined);
  EXPECT_EQ(deletionQuestions.size(), 1u);
}

TEST_F(AppModelChosenDisposal, TheAnswerCountsForTheRecordAsItIsThen) {
  const UUID id = arrive("shot.png");
  model->setDeletesChosenImmediately(true);
  onDeletionQuestion = [&] { ASSERT_TRUE(finish(model->rename(id, "renamed", ErrorScope::inbox))); };
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::done);
  EXPECT_FALSE(fileExists(shots.appending("renamed.png")));
}

TEST_F(AppModelChosenDisposal, ARecordThatIsGoneByTheAnswerIsNotTouched) {
  const UUID id = arrive("shot.png");
  model->setDeletesChosenImmediately(true);
  onDeletionQuestion = [&] { model->removeRecords({id}); };
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::done);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::declined) << "nobody is asked about it";
  EXPECT_EQ(deletionQuestions.size(), 1u);
}

TEST_F(AppModelChosenDisposal, ARefusalIsShownWhereThePersonActed) {
  const UUID id = arrive("shot.png");
  model->setDeletesChosenImmediately(true);
  files.refuse(item(id).url);
  EXPECT_EQ(finish(model->disposeChosen(id, ErrorScope::inbox)), Chosen::refused);
  EXPECT_EQ((*model->inboxError)->title, "Couldn’t Delete");
}

// --- What was confirmed in the Inbox ---

class AppModelConfirmedDisposal : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
  /// The files as they are now, when the person is asked.
  UUIDMap<FileStamp> stampsOf(const std::vector<UUID>& ids) const {
    UUIDMap<FileStamp> stamps;
    for (const UUID& id : ids) stamps[id] = model->stampOf(item(id).url);
    return stamps;
  }
  void confirm(const std::vector<UUID>& ids, const UUIDMap<FileStamp>& stamps, Reason reason = Reason::chosen) {
    std::vector<ScreenshotItem> items;
    for (const UUID& id : ids) items.push_back(item(id));
    finish(model->disposeConfirmed(items, stamps, reason));
  }
  QString title() const { return *model->inboxError ? (*model->inboxError)->title : QString(); }
  QString text() const { return *model->inboxError ? (*model->inboxError)->message : QString(); }
  const FileURL shot = shots.appending("shot.png");
};

TEST_F(AppModelConfirmedDisposal, FilesThatAreAsTheyWereGo) {
  const std::vector<UUID> ids{arrive("shot.png"), arrive("2.png")};
  confirm(ids, stampsOf(ids));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_TRUE(isInTrashFolder("2.png"));
  EXPECT_TRUE(model->items().empty());
  EXPECT_THAT(savedRecords(), IsEmpty());
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(AppModelConfirmedDisposal, TheReasonDecidesBetweenTrashAndDeleting) {
  const UUID id = arrive("shot.png");
  confirm({id}, stampsOf({id}), Reason::deleteImmediately);
  EXPECT_EQ(files.removeCalls, 1);
  EXPECT_EQ(files.trashCalls, 0);
}

TEST_F(AppModelConfirmedDisposal, AFileThatWasWrittenSinceStaysAndIsKept) {
  const UUID id = arriveTemporary("shot.png");
  const auto stamps = stampsOf({id});
  writeFile(shot, "another picture in the same file");
  confirm({id}, stamps, Reason::deleteImmediately);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(title(), "Screenshot Has Changed");
  EXPECT_EQ(text(), "“shot.png” has changed since it was shown. Look at it again, then decide.");
  EXPECT_EQ(stateOf(id), State::permanent) << "it was not this picture that was Temporary";
}

TEST_F(AppModelConfirmedDisposal, AFileOfTheSameSizeIsToldByItsTime) {
  const UUID id = arrive("shot.png");
  const auto stamps = stampsOf({id});
  setModified(shot, Date{kStart + 5});
  confirm({id}, stamps);
  EXPECT_TRUE(fileExists(shot));
  EXPECT_TRUE(hasRecord(id));
}

TEST_F(AppModelConfirmedDisposal, AFileThatCameInThePlaceOfNoneStays) {
  const UUID id = arrive("shot.png");
  deleteFile(shot);
  const auto stamps = stampsOf({id});
  writeFile(shot, "shot.png");
  confirm({id}, stamps);
  EXPECT_TRUE(fileExists(shot));
  EXPECT_TRUE(hasRecord(id));
}

TEST_F(AppModelConfirmedDisposal, AFileThatIsGoneSinceCountsAsRemoved) {
  const UUID id = arrive("shot.png");
  const auto stamps = stampsOf({id});
  deleteFile(shot);
  confirm({id}, stamps);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_FALSE(*model->inboxError);
}

TEST_F(AppModelConfirmedDisposal, WithoutAStampTheRecordSaysWhetherItIsTheFile) {
  const UUID rewritten = arrive("shot.png");
  writeFile(shot, "another picture in the same file");
  confirm({rewritten}, {});
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  const UUID replaced = arrive("2.png");
  identities[shots.appending("2.png").path()] = FileIdentity{"volume", 4711, Date{kStart + 50}, 7};
  confirm({replaced}, {});
  EXPECT_TRUE(fileExists(shots.appending("2.png")));
}

TEST_F(AppModelConfirmedDisposal, OneErrorTellsOfAllThatStayed) {
  std::vector<UUID> ids;
  for (int i = 0; i < 5; ++i) ids.push_back(arrivePermanent("shot " + std::to_string(i) + ".png"));
  const auto stamps = stampsOf(ids);
  writeFile(item(ids[0]).url, "another picture in the same file");
  writeFile(item(ids[3]).url, "another picture in the same file");
  model->protect(ids[1]);
  files.refuse(item(ids[2]).url);
  changes.clear();
  confirm(ids, stamps, Reason::deleteImmediately);
  EXPECT_EQ(changesOf(ModelField::inboxError), 1u);
  EXPECT_EQ(title(), "Couldn’t Delete Every Screenshot");
  EXPECT_EQ(text(),
            "1 screenshot is open in the crop editor or a save dialog. 1 screenshot couldn’t be moved. Check that you "
            "can change files in its folder. 2 screenshots have changed since they were shown. Look at them again, "
            "then decide. They are still in Quillmere.");
  EXPECT_EQ(model->items().size(), 4u);
  EXPECT_FALSE(hasRecord(ids[4]));
}

TEST_F(AppModelConfirmedDisposal, WhatAnotherDiskHasUnderTheNameIsNotTakenForIt) {
  const UUID id = arrivePermanent("shot.png");
  const auto stamps = stampsOf({id});
  const auto identity = item(id).fileIdentity;
  isVolumeMounted = false;
  writeFile(shot, "what another disk has");
  confirm({id}, stamps, Reason::deleteImmediately);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_TRUE(model->unavailableItemIDs->contains(id));
  EXPECT_EQ(item(id).fileIdentity, identity);
  EXPECT_EQ(title(), "Couldn’t Delete");
}

TEST_F(AppModelConfirmedDisposal, AFileThatIsOpenInTheProgramIsInUseWhateverWasWritten) {
  const UUID id = arriveTemporary("shot.png");
  const auto stamps = stampsOf({id});
  model->protect(id);
  writeFile(shot, "what the crop editor has saved");
  confirm({id}, stamps);
  EXPECT_EQ(title(), "Screenshot Is in Use");
  EXPECT_EQ(stateOf(id), State::temporary);
}

TEST_F(AppModelConfirmedDisposal, RecordsThatAreGoneAreNoError) {
  const UUID first = arrive("shot.png"), second = arrive("2.png");
  const std::vector<ScreenshotItem> items{item(first), item(second)};
  const auto stamps = stampsOf({first, second});
  model->removeRecords({first, second});
  finish(model->disposeConfirmed(items, stamps, Reason::deleteImmediately));
  finish(model->disposeConfirmed({items[0]}, stamps, Reason::deleteImmediately));
  finish(model->disposeConfirmed({}, {}, Reason::chosen));
  EXPECT_EQ(files.calls(), 0);
  EXPECT_FALSE(*model->inboxError);
}

class AppModelClearing : public AppModelDisposal {};

TEST_F(AppModelClearing, EveryRecordIsForgottenOnDiskTooAndEveryFileStays) {
  const std::vector<UUID> ids{arrive("1.png"), arriveTemporary("2.png"), arrivePermanent("3.png")};
  model->setSelectedItemIDs({ids[0], ids[2]});
  model->clearRecords();
  EXPECT_EQ(model->items().size(), 0U);
  EXPECT_THAT(savedRecords(), IsEmpty()) << "at once";
  EXPECT_FALSE(model->hasPendingSave());
  EXPECT_EQ(files.calls(), 0);
  for (const char* name : {"1.png", "2.png", "3.png"})
    EXPECT_TRUE(std::filesystem::exists(shots.appending(name).path()));
  EXPECT_TRUE(model->selectedItemIDs->empty());
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AppModelClearing, NoTemporaryScreenshotGoesLater) {
  const UUID id = arriveTemporary("1.png");
  ASSERT_TRUE(scheduledAt(id));
  model->clearRecords();
  EXPECT_FALSE(scheduledAt(id));
  advance(24 * 60 * 60.0);
  executor.drain();
  EXPECT_EQ(files.calls(), 0);
  EXPECT_FALSE(isInTrashFolder("1.png"));
}

TEST_F(AppModelClearing, WhatComesLaterIsAskedAboutAsEver) {
  arrive("1.png");
  model->clearRecords();
  const UUID id = arrive("2.png");
  EXPECT_THAT(queue(), ElementsAre(id));
  model->clearRecords();
  model->clearRecords();
  EXPECT_EQ(model->items().size(), 0U);
}

TEST_F(AppModelClearing, AListThatCannotBeWrittenIsToldAndTriedAgain) {
  arrive("1.png");
  makeSavingFail();
  model->clearRecords();
  EXPECT_EQ(model->items().size(), 0U);
  EXPECT_FALSE(model->isSaved());
  EXPECT_EQ(banner(), Issue::recordsNotSaved);
  makeSavingWork();
  advance(60);
  executor.drain();
  EXPECT_TRUE(model->isSaved());
  EXPECT_THAT(savedRecords(), IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
