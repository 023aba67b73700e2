#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <set>

#include "faults/LiveModel.h"
#include "faults/Whereabouts.h"
#include "support/ChildProcess.h"
#include "support/Printing.h"

namespace quillmere::testing {
namespace {

using Moment = FaultyCalls::Moment;
using State = ScreenshotItem::State;
using Issue = BackgroundIssue::Kind;

const std::vector<std::string> kOthers{"Screenshot 2.png", "Screenshot 3.png"};

/// What the person reads.
struct Words {
  const char* title;
  const char* message;
};
constexpr Words kNotRenamed{"Couldn’t Rename Screenshot",
                            "“Screenshot 1.png” couldn’t be renamed, so it keeps its current name. Check that you can "
                            "change files in its folder, then try again."};
constexpr Words kNotTrashed{"Couldn’t Move to Trash",
                            "“Screenshot 1.png” couldn’t be moved to Trash. It is still in Quillmere. Check that you "
                            "can change files in its folder, then try again."};
constexpr Words kNotDeleted{"Couldn’t Delete",
                            "“Screenshot 1.png” couldn’t be deleted. It is still in Quillmere. Check that you can "
                            "change files in its folder, then try again."};
constexpr const char* kDiskAway =
    "“Screenshot 1.png” is on a disk or in a folder that isn’t available. Connect the disk or "
    "choose the folder again, then try again.";

using Step = std::function<void(LiveModel&)>;

/// A decision about the screenshot, and what may come of it.
struct Decision {
  const char* name;
  State before;
  Step prepare = [](LiveModel&) {};
  Step act;
  Step retry;
  std::optional<Place> goal;        ///< where the picture is then; none: it is gone for good
  std::optional<State> stateAfter;  ///< none: the record is removed
  State stateWhenRefused;
  Call decisive;              ///< the call on the picture that does it
  bool othersMatter = false;  ///< other calls may refuse it as well
  bool isRepeatedWhenInterrupted = true;
  bool savesTwice = false;
  std::optional<ErrorScope> scope{};  ///< where a refusal is told; none: in the banner
  bool isToldInInboxToo = false;      ///< the popup goes on, and takes away what it says
  Words words{};
  Issue issue{};
};
void PrintTo(const Decision& decision, std::ostream* out) {
  *out << decision.name;
}

void renameTo(LiveModel& live, ErrorScope scope) {
  live.finish(live.model->rename(live.id, QStringLiteral("Invoice"), scope));
}
void dispose(LiveModel& live, ErrorScope scope, AppModel::DisposalReason reason) {
  if (const ScreenshotItem* item = live.record()) live.finish(live.model->disposeItem(*item, scope, reason));
}
/// Past the expiry, and before the first retry.
void letExpire(LiveModel& live) {
  live.advance(LiveModel::kLifetime + 1);
}
void waitForRetry(LiveModel& live) {
  live.advance(2 * 60 + 1);
}

const Decision kRenameInInbox{.name = "RenameInInbox",
                              .before = State::permanent,
                              .act = [](LiveModel& live) { renameTo(live, ErrorScope::inbox); },
                              .retry = [](LiveModel& live) { renameTo(live, ErrorScope::inbox); },
                              .goal = Place::newName,
                              .stateAfter = State::permanent,
                              .stateWhenRefused = State::permanent,
                              .decisive = Call::rename,
                              .scope = ErrorScope::inbox,
                              .words = kNotRenamed};
const Decision kRenameInPopup{.name = "RenameInPopup",
                              .before = State::pending,
                              .act = [](LiveModel& live) { renameTo(live, ErrorScope::popup); },
                              .retry = [](LiveModel& live) { renameTo(live, ErrorScope::popup); },
                              .goal = Place::newName,
                              .stateAfter = State::pending,
                              .stateWhenRefused = State::pending,
                              .decisive = Call::rename,
                              .scope = ErrorScope::popup,
                              .words = kNotRenamed};
const Decision kKeepWithName{
    .name = "KeepWithName",
    .before = State::pending,
    .act = [](LiveModel& live) { live.finish(live.model->keepPrompt(live.id, QStringLiteral("Invoice"))); },
    .retry = [](LiveModel& live) { renameTo(live, ErrorScope::popup); },
    .goal = Place::newName,
    .stateAfter = State::permanent,
    .stateWhenRefused = State::permanent,
    .decisive = Call::rename,
    .savesTwice = true,
    .scope = ErrorScope::popup,
    .isToldInInboxToo = true,
    .words = kNotRenamed};
const Decision kTemporaryWithName{
    .name = "TemporaryWithName",
    .before = State::pending,
    .act =
        [](LiveModel& live) {
          live.finish(live.model->markTemporary(live.id, TemporaryDuration::oneHour, QStringLiteral("Invoice")));
        },
    .retry = [](LiveModel& live) { renameTo(live, ErrorScope::popup); },
    .goal = Place::newName,
    .stateAfter = State::temporary,
    .stateWhenRefused = State::temporary,
    .decisive = Call::rename,
    .savesTwice = true,
    .scope = ErrorScope::popup,
    .isToldInInboxToo = true,
    .words = kNotRenamed};
const Decision kTrash{
    .name = "Trash",
    .before = State::permanent,
    .act = [](LiveModel& live) { dispose(live, ErrorScope::inbox, AppModel::DisposalReason::chosen); },
    .retry = [](LiveModel& live) { dispose(live, ErrorScope::inbox, AppModel::DisposalReason::chosen); },
    .goal = Place::trash,
    .stateAfter = std::nullopt,
    .stateWhenRefused = State::permanent,
    .decisive = Call::rename,
    .othersMatter = true,
    .isRepeatedWhenInterrupted = false,
    .scope = ErrorScope::inbox,
    .words = kNotTrashed};
const Decision kTrashFromPopup{
    .name = "TrashFromPopup",
    .before = State::pending,
    .act = [](LiveModel& live) { dispose(live, ErrorScope::popup, AppModel::DisposalReason::chosen); },
    .retry = [](LiveModel& live) { dispose(live, ErrorScope::popup, AppModel::DisposalReason::chosen); },
    .goal = Place::trash,
    .stateAfter = std::nullopt,
    .stateWhenRefused = State::pending,
    .decisive = Call::rename,
    .othersMatter = true,
    .isRepeatedWhenInterrupted = false,
    .scope = ErrorScope::popup,
    .words = kNotTrashed};
const Decision kDelete{
    .name = "Delete",
    .before = State::permanent,
    .act = [](LiveModel& live) { dispose(live, ErrorScope::inbox, AppModel::DisposalReason::deleteImmediately); },
    .retry = [](LiveModel& live) { dispose(live, ErrorScope::inbox, AppModel::DisposalReason::deleteImmediately); },
    .goal = std::nullopt,
    .stateAfter = std::nullopt,
    .stateWhenRefused = State::permanent,
    .decisive = Call::unlink,
    .scope = ErrorScope::inbox,
    .words = kNotDeleted};
const Decision kExpiry{.name = "Expiry",
                       .before = State::temporary,
                       .act = letExpire,
                       .retry = waitForRetry,
                       .goal = Place::trash,
                       .stateAfter = std::nullopt,
                       .stateWhenRefused = State::temporary,
                       .decisive = Call::rename,
                       .othersMatter = true,
                       .isRepeatedWhenInterrupted = false,
                       .issue = Issue::expiredScreenshotsNotTrashed};
const Decision kExpiryWithDeletion{.name = "ExpiryWithDeletion",
                                   .before = State::temporary,
                                   .prepare = [](LiveModel& live) { live.model->setDeletesExpiredImmediately(true); },
                                   .act = letExpire,
                                   .retry = waitForRetry,
                                   .goal = std::nullopt,
                                   .stateAfter = std::nullopt,
                                   .stateWhenRefused = State::temporary,
                                   .decisive = Call::unlink,
                                   .othersMatter = true,
                                   .issue = Issue::expiredScreenshotsNotTrashed};
const Decision kTimeoutWithName{.name = "TimeoutWithName",
                                .before = State::pending,
                                .prepare =
                                    [](LiveModel& live) {
                                      live.model->setScreenshotNaming(ScreenshotNaming::suggested);
                                      live.model->setPopupAutoSaveSeconds(3);
                                      live.model->setPopupAutoSaveEnabled(true);
                                    },
                                .act = [](LiveModel& live) { live.advance(4); },
                                .retry = [](LiveModel& live) { renameTo(live, ErrorScope::inbox); },
                                .goal = Place::newName,
                                .stateAfter = State::permanent,
                                .stateWhenRefused = State::permanent,
                                .decisive = Call::rename,
                                .issue = Issue::automaticRenameFailed};

class DecisionFaults : public ::testing::TestWithParam<Decision> {
 protected:
  static const Decision& decision() { return GetParam(); }
  static std::vector<Place> goal() { return decision().goal ? std::vector{*decision().goal} : std::vector<Place>(); }
  static bool isExpiry() { return decision().before == State::temporary; }

  static Whereabouts picture(const LiveModel& live) {
    return findPicture(LiveModel::bytesOf(1), live.oldPlace, live.newPlace, homeTrash(), kOthers);
  }
  static void expectOthersUntouched(const LiveModel& live) {
    for (const int number : {2, 3}) {
      EXPECT_EQ(readBytes(live.shots.appending("Screenshot " + std::to_string(number) + ".png")),
                LiveModel::bytesOf(number));
      EXPECT_TRUE(live.model->items().find(uuid(number)));
    }
  }
  static void expectNothingShown(const LiveModel& live) {
    EXPECT_EQ(*live.model->promptError, std::nullopt);
    EXPECT_EQ(*live.model->inboxError, std::nullopt);
    EXPECT_EQ(*live.model->settingsError, std::nullopt);
  }
  static void expectDone(const LiveModel& live) {
    const Whereabouts found = picture(live);
    EXPECT_EQ(found.copies, goal());
    EXPECT_THAT(found.faults, ::testing::IsEmpty());
    const ScreenshotItem* record = live.record();
    ASSERT_EQ(record != nullptr, decision().stateAfter.has_value());
    if (!record) return;
    EXPECT_EQ(record->state, *decision().stateAfter);
    EXPECT_EQ(record->url, live.newPlace);
  }
  static void expectWords(const std::optional<ScopedError>& error, ErrorScope scope) {
    const bool isRepeated = scope == ErrorScope::inbox && decision().isToldInInboxToo;
    if (decision().scope != scope && !isRepeated) {
      EXPECT_EQ(error, std::nullopt);
      return;
    }
    ASSERT_TRUE(error);
    EXPECT_EQ(error->title, QString::fromUtf8(decision().words.title));
    EXPECT_EQ(error->message, QString::fromUtf8(decision().words.message));
  }
  /// The system refused: everything is as it was, and the person is told.
  static void expectRefused(const LiveModel& live) {
    const Whereabouts found = picture(live);
    EXPECT_EQ(found.copies, std::vector{Place::oldName});
    EXPECT_THAT(found.faults, ::testing::IsEmpty());
    const ScreenshotItem* record = live.record();
    ASSERT_TRUE(record) << "the file still stands in the folder";
    EXPECT_EQ(record->state, decision().stateWhenRefused);
    EXPECT_EQ(record->url, live.oldPlace);
    EXPECT_EQ(record->expiresAt.has_value(), record->state == State::temporary);
    expectWords(*live.model->promptError, ErrorScope::popup);
    expectWords(*live.model->inboxError, ErrorScope::inbox);
    EXPECT_EQ(*live.model->settingsError, std::nullopt);
    if (isExpiry()) {
      EXPECT_TRUE(live.model->expirationScheduler().expirations().contains(live.id)) << "no retry";
    }
    if (decision().scope) {
      EXPECT_EQ(live.banner(), std::nullopt);
    } else if (!live.model->unavailableItemIDs->contains(live.id)) {
      // A picture that could not even be seen is shown as unavailable instead.
      EXPECT_EQ(*live.model->backgroundIssue, (BackgroundIssue{decision().issue, isExpiry() ? 1 : 0}));
    }
  }
  /// The list on the disk is whole, and one that the model had. Nothing of a save is left beside it.
  static void expectListWhole(const LiveModel& live, const std::vector<ScreenshotItem>& before) {
    const auto saved = live.savedRecords();
    ASSERT_TRUE(saved);
    auto between = live.records();  // where a decision saves the new name first
    for (ScreenshotItem& item : between) {
      if (item.id != live.id) continue;
      item.state = decision().before;
      item.expiresAt.reset();
    }
    EXPECT_TRUE(*saved == before || *saved == live.records() || (decision().savesTwice && *saved == between));
    if (!live.banner()) {
      EXPECT_EQ(*saved, live.records()) << "not saved, and nobody was told";
    }
  }
  static void expectSavedAgain(const LiveModel& live) {
    live.model->saveNow();
    EXPECT_NE(live.banner(), Issue::recordsNotSaved);
    EXPECT_EQ(live.savedRecords(), live.records());
    EXPECT_THAT(namesIn(live.listFile.parent()), ::testing::ElementsAre("screenshots.json"));
  }
  static bool isOfSaving(const FaultyCalls::Made& made, const LiveModel& live) {
    return (made.path + "/").starts_with(live.listFile.parent().path() + "/");
  }
  /// Whether a save cannot do without the call; what it copies it can also encode anew.
  static bool failsTheSave(const FaultyCalls::Made& made, const LiveModel& live, int error) {
    if (!isOfSaving(made, live) || error == EINTR || decision().savesTwice) return false;
    const bool isTemporary = made.path.ends_with(".saving");
    const bool isFolder = made.path == live.listFile.parent().path();
    return (made.call == Call::open && (isTemporary || isFolder)) || made.call == Call::flush ||
           (made.call == Call::rename && isTemporary);
  }
  static void hidePicture(FaultyCalls& faults, int error) {
    for (const Call call : {Call::status, Call::access, Call::open, Call::rename, Call::unlink, Call::resolvePath}) {
      faults.failEvery(call, error, LiveModel::kOldName);
    }
  }
  static void forEachCall(const std::function<bool(size_t)>& tryOut) {
    size_t number = 1;
    while (tryOut(number) && !HasFatalFailure()) ++number;
    EXPECT_GT(number, 15u) << "calls of the operation are not seen";
  }
};

INSTANTIATE_TEST_SUITE_P(Of, DecisionFaults,
                         ::testing::Values(kRenameInInbox, kRenameInPopup, kKeepWithName, kTemporaryWithName, kTrash,
                                           kTrashFromPopup, kDelete, kExpiry, kExpiryWithDeletion, kTimeoutWithName),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_P(DecisionFaults, CallThatFailsLeavesTheDecisionDoneOrRefusedAndTold) {
  int cases = 0;
  for (const int error : kErrors) {
    forEachCall([&](size_t number) {
      LiveModel live(decision().before);
      decision().prepare(live);
      const auto before = live.records();
      std::vector<FaultyCalls::Made> made;
      {
        FaultyCalls faults(privateHome());
        faults.fail(number, error);
        decision().act(live);
        made = faults.made();
      }
      if (made.size() < number) return false;
      ++cases;
      const auto& hit = made[number - 1];
      SCOPED_TRACE(describe(hit, error));
      expectOthersUntouched(live);
      expectListWhole(live, before);

      const bool isRefused = picture(live).copies == std::vector{Place::oldName};
      if (isRefused) {
        expectRefused(live);
      } else {
        expectDone(live);
        expectNothingShown(live);
        if (!isOfSaving(hit, live)) {
          EXPECT_EQ(live.banner(), std::nullopt);
        }
        if (live.banner()) {
          EXPECT_EQ(live.banner(), Issue::recordsNotSaved);
        }
        // It may have been tried again since.
        EXPECT_TRUE(!failsTheSave(hit, live, error) || live.banner() || live.savedRecords() == live.records())
            << "the save failed";
      }
      const bool isDecisive = hit.call == decision().decisive && hit.path == live.oldPlace.path();
      const bool isRepeated = error == EINTR && decision().isRepeatedWhenInterrupted;
      if (isDecisive && !isRepeated) {
        EXPECT_TRUE(isRefused);
      } else if (!decision().othersMatter || isOfSaving(hit, live)) {
        EXPECT_FALSE(isRefused);
      }

      expectSavedAgain(live);
      if (isRefused && live.record()) {
        decision().retry(live);
        expectDone(live);
        expectSavedAgain(live);
      }
      return true;
    });
  }
  RecordProperty("cases", cases);
}

/// What a power cut leaves is then found by the next start: the file where the decision put it, or the old list.
TEST_P(DecisionFaults, TheFoldersAreFlushedBeforeTheListThatTellsOfThem) {
  LiveModel live(decision().before);
  decision().prepare(live);
  FaultyCalls faults(privateHome());
  decision().act(live);
  const auto made = faults.made();
  const auto isDone = [&](const FaultyCalls::Made& one) {
    return one.call == decision().decisive && one.path == live.oldPlace.path();
  };
  const auto done = std::find_if(made.begin(), made.end(), isDone);
  ASSERT_NE(done, made.end());
  const auto saved = std::find_if(done, made.end(), [&](const auto& one) {
    return one.call == Call::rename && one.path.starts_with(live.listFile.path());
  });
  ASSERT_NE(saved, made.end());
  std::set<std::string> flushed;
  for (auto one = done; one != saved; ++one) {
    if (one->call == Call::flush) flushed.insert(one->path);
  }
  std::set<std::string> touched{live.shots.path()};
  if (decision().goal == Place::trash) {
    touched.insert({homeTrash().appending("files").path(), homeTrash().appending("info").path()});
  }
  EXPECT_TRUE(std::includes(flushed.begin(), flushed.end(), touched.begin(), touched.end()));
}

TEST_P(DecisionFaults, TransferThatFallsShortIsFinished) {
  forEachCall([&](size_t number) {
    LiveModel live(decision().before);
    decision().prepare(live);
    size_t made = 0;
    {
      FaultyCalls faults(privateHome());
      faults.shorten(number);
      decision().act(live);
      made = faults.made().size();
    }
    expectDone(live);
    expectNothingShown(live);
    EXPECT_EQ(live.banner(), std::nullopt);
    EXPECT_EQ(live.savedRecords(), live.records());
    return made >= number;
  });
}

TEST_P(DecisionFaults, NextRunAfterTheProcessEndedAtACallFindsFileAndRecordTogether) {
  for (const auto moment : {Moment::before, Moment::after}) {
    forEachCall([&](size_t number) {
      LiveModel live(decision().before);
      decision().prepare(live);
      const int code = exitCodeOfChild([&] {
        FaultyCalls faults(privateHome());
        faults.endProcess(number, moment);
        decision().act(live);
        return 0;
      });
      if (code == 0) return false;
      SCOPED_TRACE((moment == Moment::before ? "before call " : "after call ") + std::to_string(number));
      EXPECT_EQ(code, FaultyCalls::kEnded);
      live.launch();

      const Whereabouts found = picture(live);
      EXPECT_THAT(found.faults, ::testing::IsEmpty());
      expectOthersUntouched(live);
      EXPECT_EQ(live.banner(), std::nullopt);
      const ScreenshotItem* record = live.record();
      if (found.copies == std::vector{Place::oldName} || found.copies == std::vector{Place::newName}) {
        EXPECT_TRUE(record) << "its file stands in the folder";
        if (record) {
          EXPECT_EQ(record->url, found.copies[0] == Place::oldName ? live.oldPlace : live.newPlace);
        }
      } else {
        EXPECT_EQ(found.copies, goal());
        EXPECT_FALSE(record) << "its file is gone";
      }
      expectSavedAgain(live);
      return true;
    });
  }
}

/// A look that the system refuses, however often, says nothing about the file.
TEST_P(DecisionFaults, PictureThatCannotBeSeenKeepsItsRecord) {
  for (const int error : {EACCES, EIO}) {
    SCOPED_TRACE(::strerrorname_np(error));
    LiveModel live(decision().before);
    decision().prepare(live);
    {
      FaultyCalls faults(privateHome());
      hidePicture(faults, error);
      decision().act(live);
    }
    expectRefused(live);
    if (!live.record()) continue;
    decision().retry(live);
    expectDone(live);
  }
}

// --- A file that is truly missing ---

TEST_P(DecisionFaults, PictureDeletedByHandTakesItsRecordWithItWhereverItIsDisposedOf) {
  LiveModel live(decision().before);
  decision().prepare(live);
  ASSERT_TRUE(std::filesystem::remove(live.oldPlace.path()));
  decision().act(live);
  if (decision().goal == Place::newName) {
    // Only the next look at the folder takes the record away.
    EXPECT_TRUE(live.record());
    if (decision().scope) {
      expectWords(*live.model->promptError, ErrorScope::popup);
      expectWords(*live.model->inboxError, ErrorScope::inbox);
    } else {
      EXPECT_EQ(live.banner(), decision().issue);
    }
    live.model->reconcile({});
    live.executor.drain();
  } else {
    expectNothingShown(live);
    EXPECT_EQ(live.banner(), std::nullopt);
  }
  EXPECT_FALSE(live.record());
  EXPECT_EQ(live.savedRecords(), live.records());
}

TEST_P(DecisionFaults, PictureWhoseFolderIsAwayKeepsItsRecord) {
  LiveModel live(decision().before);
  decision().prepare(live);
  const FileURL away = live.home.file("away");
  std::filesystem::rename(live.shots.path(), away.path());
  decision().act(live);
  const ScreenshotItem* record = live.record();
  ASSERT_TRUE(record);
  EXPECT_EQ(record->url, live.oldPlace);
  EXPECT_EQ(record->state, decision().stateWhenRefused);
  if (decision().goal != Place::newName) {
    EXPECT_TRUE(live.model->unavailableItemIDs->contains(live.id));
    const auto& error = decision().scope == ErrorScope::popup ? *live.model->promptError : *live.model->inboxError;
    EXPECT_EQ(error.has_value(), decision().scope.has_value());
    if (error) {
      EXPECT_EQ(error->title, QString::fromUtf8(decision().words.title));
      EXPECT_EQ(error->message, QString::fromUtf8(kDiskAway));
    }
    EXPECT_EQ(live.banner(), std::nullopt);
  }
  std::filesystem::rename(away.path(), live.shots.path());
  live.model->reconcile({});
  live.executor.drain();
  decision().retry(live);
  expectDone(live);
}

}  // namespace
}  // namespace quillmere::testing
