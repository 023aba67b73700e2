#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <set>

#include "faults/LiveModel.h"
#include "faults/Whereabouts.h"
#include "support/ChildProcess.h"

namespace quillmere {

inline void PrintTo(FileOutcome outcome, std::ostream* out) {
  constexpr std::array kWords{"done", "missing", "destination exists", "failed"};
  *out << kWords.at(static_cast<size_t>(outcome));
}

}  // namespace quillmere

namespace quillmere::testing {
namespace {

using Moment = FaultyCalls::Moment;

const std::string kPicture = "picture " + std::string(20'000, 'p');

struct Operation;

/// A screenshot in a folder, and the Trash of this home.
struct Scene {
  Scene() {
    std::filesystem::remove_all(homeTrash().path());
    std::filesystem::create_directory(shots.path());
    std::filesystem::create_directory(otherDisk.path());
    writeFile(oldPlace, kPicture);
  }
  Whereabouts picture(const Operation& operation) const;
  TemporaryFolder home{privateHome().path()};
  FileURL shots = home.file("shots");
  FileURL oldPlace = shots.appending("Screenshot 1.png");
  FileURL newPlace = shots.appending("Invoice.png");
  FileURL otherDisk = home.file("disk");
  FileURL placeOnOtherDisk = otherDisk.appending("Invoice.png");
  LiveFileOperations files;
};

struct Operation {
  const char* name;
  std::function<FileOutcome(Scene&)> carryOut;
  std::optional<Place> goal;   ///< where the picture is afterwards; none: it is gone for good
  Call decisive;               ///< the call on the picture that does it
  bool isAcrossDisks = false;  ///< the plain rename is refused, as between disks
  bool othersMatter = false;   ///< other calls may refuse it as well
  bool isRepeatedWhenInterrupted = true;
};
void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

Whereabouts Scene::picture(const Operation& operation) const {
  return findPicture(kPicture, oldPlace, operation.isAcrossDisks ? placeOnOtherDisk : newPlace, homeTrash());
}

const Operation kMove{.name = "Move",
                      .carryOut = [](Scene& scene) { return scene.files.move(scene.oldPlace, scene.newPlace); },
                      .goal = Place::newName,
                      .decisive = Call::rename};
const Operation kMoveAcrossDisks{
    .name = "MoveAcrossDisks",
    .carryOut = [](Scene& scene) { return scene.files.move(scene.oldPlace, scene.placeOnOtherDisk); },
    .goal = Place::newName,
    .decisive = Call::unlink,
    .isAcrossDisks = true,
    .othersMatter = true,
    .isRepeatedWhenInterrupted = false};
const Operation kTrash{.name = "Trash",
                       .carryOut = [](Scene& scene) { return scene.files.trash(scene.oldPlace); },
                       .goal = Place::trash,
                       .decisive = Call::rename,
                       .othersMatter = true,
                       .isRepeatedWhenInterrupted = false};
const Operation kRemove{.name = "Remove",
                        .carryOut = [](Scene& scene) { return scene.files.remove(scene.oldPlace); },
                        .goal = std::nullopt,
                        .decisive = Call::unlink};

class FileOperationFaults : public ::testing::TestWithParam<Operation> {
 protected:
  static std::vector<Place> goal() { return GetParam().goal ? std::vector{*GetParam().goal} : std::vector<Place>(); }
  /// Between disks the rename of the picture itself never works.
  static void separateDisks(FaultyCalls& faults, const Scene& scene) {
    if (GetParam().isAcrossDisks) faults.failEvery(Call::rename, EXDEV, scene.oldPlace.lastPathComponent());
  }
  static FileOutcome carryOut(Scene& scene) {
    FaultyCalls faults(privateHome());
    separateDisks(faults, scene);
    return GetParam().carryOut(scene);
  }
  /// Calls `tryOut` with 1, 2, 3 ... until it tells that the operation makes no such call.
  static void forEachCall(const std::function<bool(size_t)>& tryOut) {
    size_t number = 1;
    while (tryOut(number) && !HasFatalFailure()) ++number;
    EXPECT_GT(number, 1u) << "none of its calls was seen";
  }
};

INSTANTIATE_TEST_SUITE_P(Of, FileOperationFaults, ::testing::Values(kMove, kMoveAcrossDisks, kTrash, kRemove),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_P(FileOperationFaults, CallThatFailsLeavesThePictureOnceAndTheAnswerTrue) {
  int cases = 0;
  for (const int error : kErrors) {
    forEachCall([&](size_t number) {
      Scene scene;
      FileOutcome outcome{};
      std::vector<FaultyCalls::Made> made;
      {
        FaultyCalls faults(privateHome());
        separateDisks(faults, scene);
        faults.fail(number, error);
        outcome = GetParam().carryOut(scene);
        made = faults.made();
      }
      if (made.size() < number) return false;
      ++cases;
      const auto& hit = made[number - 1];
      SCOPED_TRACE(describe(hit, error));
      const Whereabouts picture = scene.picture(GetParam());
      EXPECT_THAT(picture.faults, ::testing::IsEmpty());
      const bool isDone = outcome == FileOutcome::done;
      EXPECT_EQ(picture.copies, isDone ? goal() : std::vector{Place::oldName});
      if (!isDone) {
        EXPECT_EQ(outcome, FileOutcome::failed) << "the picture is there";
      }
      const bool isDecisive = hit.call == GetParam().decisive && hit.path == scene.oldPlace.path();
      const bool isRepeated = error == EINTR && GetParam().isRepeatedWhenInterrupted;
      if (isDecisive && !isRepeated) {
        EXPECT_FALSE(isDone);
      } else if (!GetParam().othersMatter) {
        EXPECT_TRUE(isDone);
      }
      if (!isDone) {
        EXPECT_EQ(carryOut(scene), FileOutcome::done) << "the next try";
        EXPECT_EQ(scene.picture(GetParam()).copies, goal());
        EXPECT_THAT(scene.picture(GetParam()).faults, ::testing::IsEmpty());
      }
      return true;
    });
  }
  RecordProperty("cases", cases);
}

TEST_P(FileOperationFaults, TransferThatFallsShortIsFinished) {
  forEachCall([&](size_t number) {
    Scene scene;
    size_t made = 0;
    {
      FaultyCalls faults(privateHome());
      separateDisks(faults, scene);
      faults.shorten(number);
      EXPECT_EQ(GetParam().carryOut(scene), FileOutcome::done);
      made = faults.made().size();
    }
    EXPECT_EQ(scene.picture(GetParam()).copies, goal());
    EXPECT_THAT(scene.picture(GetParam()).faults, ::testing::IsEmpty());
    return made >= number;
  });
}

TEST_P(FileOperationFaults, ProcessEndedAtACallLeavesThePictureOnce) {
  for (const auto moment : {Moment::before, Moment::after}) {
    forEachCall([&](size_t number) {
      Scene scene;
      const int code = exitCodeOfChild([&] {
        FaultyCalls faults(privateHome());
        separateDisks(faults, scene);
        faults.endProcess(number, moment);
        return GetParam().carryOut(scene) == FileOutcome::done ? 0 : 1;
      });
      if (code == 0) return false;
      SCOPED_TRACE("call " + std::to_string(number));
      EXPECT_EQ(code, FaultyCalls::kEnded);
      Whereabouts picture = scene.picture(GetParam());
      if (GetParam().isAcrossDisks) {
        // The original goes only when the copy is safe: in between there are two. A part of one is left nowhere.
        EXPECT_FALSE(picture.copies.empty());
        const auto names = namesIn(scene.otherDisk);
        EXPECT_TRUE(names.empty() || names == std::vector{scene.placeOnOtherDisk.lastPathComponent()});
        return true;
      }
      EXPECT_THAT(picture.faults, ::testing::IsEmpty());
      if (picture.copies != goal()) {
        EXPECT_EQ(picture.copies, std::vector{Place::oldName});
        EXPECT_EQ(carryOut(scene), FileOutcome::done) << "what was left stands in the way";
        picture = scene.picture(GetParam());
        EXPECT_EQ(picture.copies, goal());
        EXPECT_THAT(picture.faults, ::testing::IsEmpty());
      }
      return true;
    });
  }
}

TEST_P(FileOperationFaults, PictureThatIsTrulyGoneIsMissing) {
  Scene scene;
  ASSERT_EQ(::unlink(scene.oldPlace.c_str()), 0);
  EXPECT_EQ(GetParam().carryOut(scene), FileOutcome::missing);
}

TEST_P(FileOperationFaults, PictureThatCannotBeSeenIsNotMissing) {
  for (const int error : {EACCES, EIO}) {
    Scene scene;
    {
      FaultyCalls faults(privateHome());
      for (const Call call : {Call::status, Call::access, Call::rename, Call::unlink}) {
        faults.failEvery(call, error, scene.oldPlace.lastPathComponent());
      }
      EXPECT_EQ(GetParam().carryOut(scene), FileOutcome::failed) << ::strerrorname_np(error);
    }
    EXPECT_EQ(scene.picture(GetParam()).copies, std::vector{Place::oldName});
  }
}

// --- File systems that do not know the rename that never replaces ---

TEST(PlainRenameFaults, NeverReplacesWhateverElseFails) {
  for (const int error : kErrors) {
    Scene scene;
    writeFile(scene.newPlace, "another");
    {
      FaultyCalls faults(privateHome());
      faults.failOnly(Call::rename, 1, EINVAL);
      faults.failEvery(Call::status, error, scene.newPlace.lastPathComponent());
      // A name that is said to be free cannot be told from one that is.
      if (error != ENOENT) {
        EXPECT_NE(scene.files.move(scene.oldPlace, scene.newPlace), FileOutcome::done);
      }
    }
    EXPECT_EQ(readBytes(scene.newPlace), "another") << ::strerrorname_np(error);
    EXPECT_EQ(readBytes(scene.oldPlace), kPicture) << ::strerrorname_np(error);
  }
}

TEST(PlainRenameFaults, MovesWhereTheNameIsFree) {
  Scene scene;
  {
    FaultyCalls faults(privateHome());
    faults.failOnly(Call::rename, 1, EINVAL);
    EXPECT_EQ(scene.files.move(scene.oldPlace, scene.newPlace), FileOutcome::done);
  }
  EXPECT_EQ(scene.picture(kMove).copies, std::vector{Place::newName});
}

TEST(MoveAcrossDisksFaults, OriginalThatWentDespiteARefusalLeavesTheCopy) {
  for (const int error : {EIO, ENOENT, ETIMEDOUT}) {
    Scene scene;
    const std::string name = scene.oldPlace.lastPathComponent();
    {
      FaultyCalls faults(privateHome());
      faults.failEvery(Call::rename, EXDEV, name);
      faults.refuseAfterTheDeed(Call::unlink, error, "/shots/" + name);
      EXPECT_EQ(scene.files.move(scene.oldPlace, scene.placeOnOtherDisk), FileOutcome::done) << error;
    }
    EXPECT_EQ(readBytes(scene.placeOnOtherDisk), kPicture);
    EXPECT_FALSE(fileExists(scene.oldPlace));
  }
}

TEST(MoveAcrossDisksFaults, ACopyThatIsCutOffHasNoName) {
  Scene scene;
  const auto carryOut = [&] {
    FaultyCalls faults(privateHome());
    faults.failEvery(Call::rename, EXDEV, scene.oldPlace.lastPathComponent());
    faults.failOnly(Call::link, 1, EIO);
    return scene.files.move(scene.oldPlace, scene.placeOnOtherDisk);
  };
  EXPECT_EQ(carryOut(), FileOutcome::failed) << "the name comes last";
  EXPECT_THAT(namesIn(scene.placeOnOtherDisk.parent()), ::testing::IsEmpty());
}

TEST(MoveAcrossDisksFaults, WhereEveryFileNeedsANameTheCopyHasAHiddenOne) {
  Scene scene;
  const auto carryOut = [&](std::optional<Call> alsoFails) {
    FaultyCalls faults(privateHome());
    faults.failEvery(Call::rename, EXDEV, scene.oldPlace.lastPathComponent());
    faults.failEvery(Call::open, EOPNOTSUPP, scene.placeOnOtherDisk.parent().lastPathComponent());
    if (alsoFails) faults.failOnly(*alsoFails, 1, EIO);
    return scene.files.move(scene.oldPlace, scene.placeOnOtherDisk);
  };
  EXPECT_EQ(carryOut(Call::flush), FileOutcome::failed);
  EXPECT_EQ(scene.picture(kMoveAcrossDisks).copies, std::vector{Place::oldName});
  EXPECT_THAT(namesIn(scene.placeOnOtherDisk.parent()), ::testing::IsEmpty());
  EXPECT_EQ(carryOut(std::nullopt), FileOutcome::done);
  EXPECT_EQ(scene.picture(kMoveAcrossDisks).copies, std::vector{Place::newName});
}

// --- A Trash that cannot be written ---

TEST(TrashFaults, FullDiskLeavesThePictureInItsPlace) {
  Scene scene;
  {
    FaultyCalls faults(privateHome());
    faults.failEvery(Call::write, ENOSPC);
    EXPECT_EQ(scene.files.trash(scene.oldPlace), FileOutcome::failed) << "nobody could restore it";
  }
  EXPECT_EQ(scene.picture(kTrash).copies, std::vector{Place::oldName});
  EXPECT_EQ(scene.files.trash(scene.oldPlace), FileOutcome::done);
  EXPECT_THAT(scene.picture(kTrash).faults, ::testing::IsEmpty());
}

TEST(TrashFaults, WhatRestoringNeedsIsFlushed) {
  Scene scene;
  const auto made = callsMade(privateHome(), [&] { EXPECT_EQ(scene.files.trash(scene.oldPlace), FileOutcome::done); });
  const bool isFlushed = std::any_of(made.begin(), made.end(), [](const FaultyCalls::Made& one) {
    return one.call == Call::flush && one.path.ends_with(".trashinfo");
  });
  EXPECT_TRUE(isFlushed) << "its contents would come to the disk half a minute after the picture has gone to the Trash";
}

TEST(TrashFaults, WhereThatCannotBeFlushedThePictureComesBack) {
  Scene scene;
  {
    FaultyCalls faults(privateHome());
    faults.failEvery(Call::flush, EIO, ".trashinfo");
    EXPECT_EQ(scene.files.trash(scene.oldPlace), FileOutcome::failed);
  }
  EXPECT_EQ(scene.picture(kTrash).copies, std::vector{Place::oldName});
}

}  // namespace
}  // namespace quillmere::testing
