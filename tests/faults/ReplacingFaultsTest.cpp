#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "faults/LiveModel.h"
#include "faults/Whereabouts.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"
#include "records/ReplacementJournal.h"
#include "support/ChildProcess.h"
#include "support/Printing.h"

namespace quillmere::testing {
namespace {

using Moment = FaultyCalls::Moment;
using State = ScreenshotItem::State;
using ::testing::IsEmpty;

const QRectF kCrop(2, 3, 4, 5);

QImage picture() {
  QImage image(16, 16, QImage::Format_RGB32);
  image.fill(qRgb(10, 200, 30));
  return image;
}
std::string cropBytes() {
  static const QByteArray bytes =
      *ImageOperations::encode(*ImageOperations::crop(picture(), kCrop), PictureFormat::png);
  return bytes.toStdString();
}

/// The screenshot's folder after an attempt to put a crop in its place.
class ReplacingFaults : public ::testing::Test {
 protected:
  static std::optional<QString> replace(LiveModel& live) {
    const auto task = live.model->replaceOriginal(live.id, picture(), kCrop);
    live.executor.drain();
    EXPECT_TRUE(task.isDone());
    return task.await_resume();
  }
  static bool isReplaced(const LiveModel& live) {
    return fileExists(live.oldPlace) && readBytes(live.oldPlace) == cropBytes();
  }
  static bool isOriginal(const LiveModel& live) {
    return fileExists(live.oldPlace) && readBytes(live.oldPlace) == LiveModel::bytesOf(1);
  }
  /// Where the whole original lies, and whether Trash can give it back.
  static Whereabouts original(const LiveModel& live) {
    std::vector<std::string> others{"Screenshot 2.png", "Screenshot 3.png"};
    if (isReplaced(live)) others.emplace_back(LiveModel::kOldName);
    return findPicture(LiveModel::bytesOf(1), live.oldPlace, live.oldPlace, homeTrash(), others);
  }
  static void expectReplaced(const LiveModel& live) {
    EXPECT_TRUE(isReplaced(live));
    EXPECT_EQ(original(live).copies, std::vector{Place::trash});
    EXPECT_THAT(original(live).faults, IsEmpty());
    const ScreenshotItem* record = live.record();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->url, live.oldPlace);
    EXPECT_EQ(record->state, State::pending);
    EXPECT_EQ(record->imageDescription, std::nullopt);
    // A look that was refused leaves the identity to the next reconciliation.
    if (record->fileIdentity) {
      EXPECT_EQ(record->fileIdentity->file, fileStatus(live.oldPlace)->inode);
    }
  }
  static void expectUnchanged(const LiveModel& live) {
    EXPECT_TRUE(isOriginal(live));
    EXPECT_EQ(original(live).copies, std::vector{Place::oldName});
    EXPECT_THAT(original(live).faults, IsEmpty());
    const ScreenshotItem* record = live.record();
    ASSERT_TRUE(record);
    EXPECT_NE(record->imageDescription, std::nullopt);
    EXPECT_EQ(record->fileIdentity->file, fileStatus(live.oldPlace)->inode);
  }
  static void expectSupportFolderClean(const LiveModel& live) {
    EXPECT_THAT(namesIn(live.listFile.parent()), ::testing::ElementsAre("screenshots.json"));
  }
  static void forEachCall(const std::function<bool(size_t)>& tryOut) {
    size_t number = 1;
    while (tryOut(number) && !HasFatalFailure()) ++number;
    EXPECT_GT(number, 30u) << "calls of the operation are not seen";
  }
};

TEST_F(ReplacingFaults, CallThatFailsLeavesTheCropOrTheOriginal) {
  int cases = 0;
  for (const int error : kErrors) {
    forEachCall([&](size_t number) {
      LiveModel live(State::pending);
      std::optional<QString> reason;
      std::vector<FaultyCalls::Made> made;
      {
        FaultyCalls faults(privateHome());
        faults.fail(number, error);
        reason = replace(live);
        made = faults.made();
      }
      if (made.size() < number) return false;
      ++cases;
      SCOPED_TRACE(describe(made[number - 1], error));
      if (reason) {
        EXPECT_FALSE(reason->isEmpty());
        expectUnchanged(live);
        EXPECT_EQ(replace(live), std::nullopt) << "the next try";
      }
      expectReplaced(live);
      live.model->saveNow();
      // A journal that could not be removed is looked at by the next run.
      live.launch();
      expectReplaced(live);
      EXPECT_TRUE(live.record()->fileIdentity);
      expectSupportFolderClean(live);
      return true;
    });
  }
  RecordProperty("cases", cases);
}

TEST_F(ReplacingFaults, JournalIsCalledSavedOnlyWhereItWasWrittenAndFlushed) {
  using Entries = std::vector<Replacement>;
  const TemporaryFolder folder;
  const FileURL file = folder.file("replacing.json");
  const ReplacementJournal journal(file);
  const Entries before{{UUID::createUuid(), file, file, 1}}, after{{UUID::createUuid(), file, file, 2}};
  for (const Call call : {Call::open, Call::write, Call::flush, Call::rename}) {
    for (size_t number = 1;; ++number) {
      ASSERT_TRUE(journal.save(before));
      FaultyCalls faults(folder.url());
      faults.failOnly(call, number, EIO);
      const bool isSaved = journal.save(after);
      const auto made = faults.made();
      if (std::count_if(made.begin(), made.end(), [&](const auto& one) { return one.call == call; }) < int(number)) {
        EXPECT_TRUE(isSaved);
        EXPECT_GT(number, 1u) << nameOf(call) << " is not seen";
        break;
      }
      EXPECT_FALSE(isSaved) << nameOf(call) << number;
      EXPECT_TRUE(journal.load() == before || journal.load() == after) << nameOf(call) << number;
    }
  }
}

TEST_F(ReplacingFaults, TransferThatFallsShortIsFinished) {
  forEachCall([&](size_t number) {
    LiveModel live(State::pending);
    size_t made = 0;
    {
      FaultyCalls faults(privateHome());
      faults.shorten(number);
      EXPECT_EQ(replace(live), std::nullopt);
      made = faults.made().size();
    }
    expectReplaced(live);
    expectSupportFolderClean(live);
    return made >= number;
  });
}

TEST_F(ReplacingFaults, NextRunAfterTheProcessEndedAtACallBringsItToAnEnd) {
  for (const auto moment : {Moment::before, Moment::after}) {
    forEachCall([&](size_t number) {
      LiveModel live(State::pending);
      const int code = exitCodeOfChild([&] {
        FaultyCalls faults(privateHome());
        faults.endProcess(number, moment);
        replace(live);
        return 0;
      });
      if (code == 0) return false;
      SCOPED_TRACE((moment == Moment::before ? "before call " : "after call ") + std::to_string(number));
      EXPECT_EQ(code, FaultyCalls::kEnded);
      live.launch();
      if (isReplaced(live)) {
        expectReplaced(live);
      } else {
        expectUnchanged(live);
      }
      live.model->saveNow();
      expectSupportFolderClean(live);
      return true;
    });
  }
}

}  // namespace
}  // namespace quillmere::testing
