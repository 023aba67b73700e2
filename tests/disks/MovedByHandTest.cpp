// The person moves or throws away files with a file manager while the program runs and while it does not.

#include "faults/LiveModel.h"

namespace quillmere {
namespace {

using testing::LiveModel;
using State = ScreenshotItem::State;

class MovedByHandTest : public ::testing::Test {
 protected:
  MovedByHandTest() { std::filesystem::create_directories(elsewhere.path()); }
  static void move(const FileURL& from, const FileURL& to) {
    ASSERT_EQ(::rename(from.c_str(), to.c_str()), 0) << to.path();
  }
  void moveToTrash(const FileURL& file) {
    LiveFileOperations files;
    ASSERT_EQ(files.trash(file), FileOutcome::done);
  }

  testing::TemporaryFolder home{testing::privateHome().path()};
  const FileURL elsewhere = home.file("Documents/Invoices");
};

TEST_F(MovedByHandTest, ATemporaryScreenshotIsFollowedToAnyFolder) {
  LiveModel live(State::temporary);
  live.hold({live.oldPlace});
  const FileURL moved = elsewhere.appending("2026.png");
  move(live.oldPlace, moved);
  live.tellOfWaking();
  live.executor.drain();
  ASSERT_TRUE(live.record());
  EXPECT_EQ(live.record()->url, moved);
  EXPECT_EQ(live.record()->state, State::permanent);
  EXPECT_EQ(live.record()->imageDescription, QByteArray("An invoice"));
  live.advance(4000);
  EXPECT_EQ(readFile(moved), LiveModel::bytesOf(1));
}

TEST_F(MovedByHandTest, AlsoWhenItsTimeIsUpBeforeThatIsNoticed) {
  LiveModel live(State::temporary);
  live.hold({live.oldPlace});
  const FileURL moved = elsewhere.appending("2026.png");
  move(live.oldPlace, moved);
  live.advance(LiveModel::kLifetime + 1);
  ASSERT_TRUE(live.record());
  EXPECT_EQ(live.record()->url, moved);
  EXPECT_EQ(readFile(moved), LiveModel::bytesOf(1));
}

TEST_F(MovedByHandTest, WhileTheProgramWasClosedItIsFollowedToWhereOthersWent) {
  LiveModel live(State::temporary);
  live.hold({live.shots.appending("Screenshot 2.png")});
  move(live.shots.appending("Screenshot 2.png"), elsewhere.appending("2.png"));
  live.tellOfWaking();
  live.executor.drain();
  live.quit();
  move(live.oldPlace, elsewhere.appending("1.png"));
  live.launch();
  ASSERT_TRUE(live.record());
  EXPECT_EQ(live.record()->url, elsewhere.appending("1.png"));
  EXPECT_EQ(live.record()->state, State::permanent);
}

TEST_F(MovedByHandTest, OneThatWasDeletedOrThrownAwayIsForgotten) {
  for (const bool isDeleted : {true, false}) {
    LiveModel live(State::temporary);
    live.hold({live.oldPlace});
    if (isDeleted) {
      ASSERT_EQ(::unlink(live.oldPlace.c_str()), 0);
    } else {
      moveToTrash(live.oldPlace);
    }
    live.tellOfWaking();
    live.executor.drain();
    EXPECT_FALSE(live.record()) << isDeleted;
  }
}

TEST_F(MovedByHandTest, AKeptOneOutsideTheFolderThatIsThrownAwayIsForgotten) {
  LiveModel live(State::permanent);
  live.hold({live.oldPlace});
  const FileURL moved = elsewhere.appending("2026.png");
  move(live.oldPlace, moved);
  live.tellOfWaking();
  live.executor.drain();
  live.hold({});
  ASSERT_EQ(live.record()->url, moved);
  live.quit();
  moveToTrash(moved);
  live.launch();
  EXPECT_FALSE(live.record());
  EXPECT_EQ(live.records().size(), 2u);
}

}  // namespace
}  // namespace quillmere
