#include "update/library/Relaunch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <array>
#include <fstream>

#include "foundation/FileStatus.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class RelaunchTest : public ::testing::Test {
 protected:
  RelaunchTest() {
    std::ofstream(program.path()) << "#!/bin/sh\necho started >> \"${0%/*}/log\"\n";
    ::chmod(program.c_str(), 0755);
  }
  bool isStarted() const { return readFile(folder.file("log")) == "started\n"; }

  testing::TemporaryFolder folder;
  FileURL program = folder.file("a program's $(name)");
};

TEST_F(RelaunchTest, TheProgramStartsOnlyOnceThisOneHasEnded) {
  const int code = testing::exitCodeOfChild([this] {
    if (!startWhenThisEnds(program)) return 1;
    ::usleep(100'000);
    return isStarted() ? 2 : 0;
  });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(testing::runLoopUntil([this] { return isStarted(); }));
}

TEST_F(RelaunchTest, AStartThatIsCalledOffNeverComes) {
  // Whoever waits holds the writing end, and whatever that starts.
  std::array<int, 2> held{};
  ASSERT_EQ(::pipe(held.data()), 0);
  const int code = testing::exitCodeOfChild([&] {
    const auto start = startWhenThisEnds(program);
    if (start) start->callOff();
    return start ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  ::close(held[1]);
  char byte = 0;
  EXPECT_EQ(::read(held[0], &byte, 1), 0) << "nobody is left";
  ::close(held[0]);
  EXPECT_FALSE(fileExists(folder.file("log")));
}

TEST_F(RelaunchTest, AnEndByASignalIsAnEndToo) {
  const int code = testing::exitCodeOfChild([this] {
    if (startWhenThisEnds(program)) ::abort();
    return 1;
  });
  EXPECT_EQ(code, -1);
  EXPECT_TRUE(testing::runLoopUntil([this] { return isStarted(); }));
}

}  // namespace
}  // namespace quillmere
