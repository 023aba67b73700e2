#include "fakes/ModelFixture.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppModelDecisions : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }
};

TEST_F(AppModelDecisions, TemporarySetsTheMomentRemembersTheDurationAndSaves) {
  const UUID id = arrive("shot.png");
  const Date moment = now();
  model->markTemporary(id, TemporaryDuration::fifteenMinutes).detach();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(item(id).expiresAt, moment + 900.0);
  EXPECT_EQ(scheduledAt(id), moment + 900.0);
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fifteenMinutes);
  EXPECT_EQ(settingsOnDisk()["quillmere.last-duration"], QJsonValue(900));
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_EQ(savedRecord(id), item(id));
}

TEST_F(AppModelDecisions, EndOfDayIsOneSecondBeforeMidnightOfThatDay) {
  const UUID id = arrive("shot.png");
  model->markTemporary(id, TemporaryDuration::endOfDay).detach();
  const QDateTime expires = item(id).expiresAt->toDateTime().toUTC();
  EXPECT_EQ(expires.time(), QTime(23, 59, 59));
  EXPECT_EQ(expires.date(), now().toDateTime().toUTC().date());
  EXPECT_EQ(settingsOnDisk()["quillmere.last-duration"], QJsonValue(-1));
}

TEST_F(AppModelDecisions, TemporaryOnARecordThatBecamePermanentAMomentEarlierDoesNothing) {
  const UUID id = arrivePermanent("shot.png");
  const ScreenshotItem before = item(id);
  wasSaved();
  model->markTemporary(id, TemporaryDuration::oneHour, "another name").detach();
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(scheduledAt(id), std::nullopt);
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fiveMinutes);
  EXPECT_EQ(files.calls(), 0);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelDecisions, TemporaryIsDecidedOnce) {
  const UUID id = arriveTemporary("shot.png", TemporaryDuration::oneMinute);
  const auto expiresAt = item(id).expiresAt;
  advance(10);
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  EXPECT_EQ(item(id).expiresAt, expiresAt);
}

TEST_F(AppModelDecisions, ADecisionOnAnUnknownRecordDoesNothing) {
  const UUID id = arrive("shot.png");
  model->markTemporary(uuid(404), TemporaryDuration::oneHour).detach();
  model->keepPrompt(uuid(404)).detach();
  model->keepBatch({uuid(404)});
  model->markTemporaryBatch({uuid(404)}, TemporaryDuration::oneHour);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fiveMinutes);
}

TEST_F(AppModelDecisions, KeepMakesPermanentAndSaves) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  model->keepPrompt(first).detach();
  EXPECT_EQ(stateOf(first), State::permanent);
  EXPECT_EQ(presenter.visible, second);
  EXPECT_EQ(savedRecord(first), item(first));
}

TEST_F(AppModelDecisions, KeepInThePopupIsForPendingRecordsAlone) {
  const UUID id = arriveTemporary("shot.png");
  model->keepPrompt(id, "another name").detach();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelDecisions, ANameRenamesTheFileFirst) {
  const UUID kept = arrive("one.png");
  finish(model->keepPrompt(kept, "A kept one"));
  EXPECT_EQ(item(kept).url, shots.appending("A kept one.png"));
  EXPECT_TRUE(fileExists(shots.appending("A kept one.png")));
  const UUID temporary = arrive("two.png");
  finish(model->markTemporary(temporary, TemporaryDuration::oneMinute, "A passing one"));
  EXPECT_EQ(item(temporary).url, shots.appending("A passing one.png"));
  EXPECT_EQ(stateOf(temporary), State::temporary);
  EXPECT_EQ(savedRecord(temporary), item(temporary));
}

TEST_F(AppModelDecisions, AFailedRenameDoesNotStopTheDecision) {
  const UUID kept = arrive("one.png");
  files.refuse(shots.appending("one.png"));
  finish(model->keepPrompt(kept, "A kept one"));
  EXPECT_EQ(stateOf(kept), State::permanent);
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Rename Screenshot");
  EXPECT_EQ(*model->inboxError, *model->promptError) << "the next popup takes it away";

  const UUID temporary = arrive("two.png");
  files.refuse(shots.appending("two.png"));
  finish(model->markTemporary(temporary, TemporaryDuration::oneMinute, "A passing one"));
  EXPECT_EQ(stateOf(temporary), State::temporary);
  EXPECT_EQ(item(temporary).url, shots.appending("two.png"));
  EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(AppModelDecisions, BatchTakesOneMomentForAllPendingAndReachableRecords) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID waiting = arrive("waiting.png");
  const UUID kept = arrivePermanent("kept.png");
  const UUID lost = arrive("lost.png");
  makeUnavailable(lost);
  const Date moment = now();
  wasSaved();
  presenter.presented.clear();
  model->markTemporaryBatch({first, second, kept, lost, uuid(404)}, TemporaryDuration::oneHour);
  EXPECT_EQ(item(first).expiresAt, moment + 3600.0);
  EXPECT_EQ(item(second).expiresAt, moment + 3600.0);
  EXPECT_EQ(scheduledAt(second), moment + 3600.0);
  EXPECT_EQ(stateOf(kept), State::permanent);
  EXPECT_EQ(stateOf(lost), State::pending);
  EXPECT_EQ(presenter.presented.size(), 1u) << "one change of the popup, past both";
  EXPECT_EQ(presenter.visible, waiting);
  EXPECT_EQ(settingsOnDisk()["quillmere.last-duration"], QJsonValue(3600));
  EXPECT_TRUE(wasSaved());
}

TEST_F(AppModelDecisions, BatchWithNothingToDecideChangesNothing) {
  const UUID kept = arrivePermanent("kept.png");
  const UUID lost = arrive("lost.png");
  makeUnavailable(lost);
  wasSaved();
  model->markTemporaryBatch({kept, lost}, TemporaryDuration::oneHour);
  model->keepBatch({kept, lost});
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::fiveMinutes);
  EXPECT_EQ(stateOf(lost), State::pending);
  EXPECT_FALSE(wasSaved());
}

TEST_F(AppModelDecisions, KeepBatchKeepsPendingAndTemporaryRecords) {
  const UUID temporary = arriveTemporary("temporary.png");
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  const UUID last = arrive("last.png");
  presenter.presented.clear();
  model->keepBatch({temporary, first, second});
  for (const UUID& id : {temporary, first, second}) {
    EXPECT_EQ(stateOf(id), State::permanent);
    EXPECT_EQ(savedRecord(id), item(id));
  }
  EXPECT_EQ(item(temporary).expiresAt, std::nullopt);
  EXPECT_EQ(scheduledAt(temporary), std::nullopt);
  EXPECT_THAT(presenter.presented, ElementsAre(last));
}

TEST_F(AppModelDecisions, KeepingARecordWhoseExpiryFailedTakesItOutOfTheBanner) {
  const UUID first = arriveTemporary("first.png", TemporaryDuration::oneMinute);
  const UUID second = arriveTemporary("second.png", TemporaryDuration::oneMinute);
  files.refuse(item(first).url);
  files.refuse(item(second).url);
  advance(61);
  ASSERT_TRUE(model->backgroundIssue->has_value());
  EXPECT_EQ((*model->backgroundIssue)->count, 2);
  model->keepBatch({first});
  EXPECT_EQ((*model->backgroundIssue)->count, 1);
  model->keepBatch({second});
  EXPECT_EQ(banner(), std::nullopt);
}

TEST_F(AppModelDecisions, KeepingLeavesAnotherBannerStanding) {
  const UUID id = arriveTemporary("first.png", TemporaryDuration::oneMinute);
  files.refuse(item(id).url);
  advance(61);
  makeSavingFail();
  model->saveNow();
  ASSERT_EQ(banner(), Issue::recordsNotSaved);
  model->keepBatch({id});
  EXPECT_EQ(banner(), Issue::recordsNotSaved);
}

}  // namespace
}  // namespace quillmere::testing
