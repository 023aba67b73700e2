#include "platform/linux/session/RunMarker.h"

#include <sys/stat.h>

#include "foundation/FileStatus.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::exitCodeOfChild;
using testing::setModified;
using testing::TemporaryFolder;
using testing::writeFile;

const Date kNow{710000000};

class RunMarkerTest : public ::testing::Test {
 protected:
  /// A run that ends without notice.
  void crash() {
    ASSERT_EQ(exitCodeOfChild([this] {
                const auto* lost = new RunMarker(marker, list, kNow);
                return lost->isTaken() ? 1 : 0;
              }),
              0);
    ASSERT_TRUE(fileExists(marker));
  }
  TemporaryFolder folder;
  FileURL marker = folder.file("support/running");
  FileURL list = folder.file("screenshots.json");
};

TEST_F(RunMarkerTest, TheFirstRunWasNotInterrupted) {
  const RunMarker run(marker, list, kNow);
  EXPECT_FALSE(run.isTaken());
  EXPECT_EQ(run.interruptedSince(), std::nullopt);
  EXPECT_TRUE(fileExists(marker)) << "its folder is made with it";
}

TEST_F(RunMarkerTest, ACleanEndLeavesNothing) {
  { const RunMarker run(marker, list, kNow); }
  EXPECT_FALSE(fileExists(marker));
  EXPECT_EQ(RunMarker(marker, list, kNow).interruptedSince(), std::nullopt);
}

TEST_F(RunMarkerTest, AfterACrashTheNextRunKnowsSinceWhen) {
  crash();
  setModified(marker, Date{700000000});
  const RunMarker run(marker, list, kNow);
  EXPECT_FALSE(run.isTaken());
  ASSERT_TRUE(run.interruptedSince());
  EXPECT_NEAR(run.interruptedSince()->seconds, 700000000 - 5, 0.001);
}

TEST_F(RunMarkerTest, WhereTheClockWasSetBackSinceADayIsLookedBack) {
  crash();
  setModified(marker, Date{kNow.seconds + 0.5});
  EXPECT_NEAR(RunMarker(marker, list, kNow).interruptedSince()->seconds, kNow.seconds - 86400 - 5, 0.001);
  crash();
  setModified(marker, Date{kNow.seconds - 0.5});
  EXPECT_NEAR(RunMarker(marker, list, kNow).interruptedSince()->seconds, kNow.seconds - 5.5, 0.001);
}

TEST_F(RunMarkerTest, TheLastSaveTellsThatTheLostRunWasStillAlive) {
  crash();
  writeFile(list, "{}");
  setModified(marker, Date{700000000});
  setModified(list, Date{700003600});
  EXPECT_NEAR(RunMarker(marker, list, kNow).interruptedSince()->seconds, 700003600 - 5, 0.001);
}

TEST_F(RunMarkerTest, AListOlderThanTheLostRunTellsNothing) {
  crash();
  writeFile(list, "{}");
  setModified(marker, Date{700000000});
  setModified(list, Date{600000000});
  EXPECT_NEAR(RunMarker(marker, list, kNow).interruptedSince()->seconds, 700000000 - 5, 0.001);
}

TEST_F(RunMarkerTest, ARunAfterACrashMarksItsOwnStart) {
  crash();
  setModified(marker, Date{700000000});
  const RunMarker run(marker, list, kNow);
  EXPECT_GT(fileStatus(marker)->modified.seconds, 700000000 + 1000);
}

TEST_F(RunMarkerTest, ASecondProcessFindsItTakenAndLeavesItAlone) {
  const RunMarker run(marker, list, kNow);
  EXPECT_EQ(exitCodeOfChild([this] {
              const RunMarker second(marker, list, kNow);
              return second.isTaken() && !second.interruptedSince() ? 0 : 1;
            }),
            0);
  EXPECT_TRUE(fileExists(marker));
}

TEST_F(RunMarkerTest, WithoutAPlaceForTheMarkerTheProgramRunsAllTheSame) {
  writeFile(folder.file("support"), "a file in the folder's place");
  const RunMarker run(marker, list, kNow);
  EXPECT_FALSE(run.isTaken());
  EXPECT_EQ(run.interruptedSince(), std::nullopt);
}

}  // namespace
}  // namespace quillmere
