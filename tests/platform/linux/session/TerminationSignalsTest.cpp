#include "platform/linux/session/TerminationSignals.h"

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <string>

#include "support/ChildProcess.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class TerminationSignalsTest : public ::testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

/// In a process of its own, whose end an unheard signal would be.
TEST_P(TerminationSignalsTest, ArriveAsOneCallOfTheLoop) {
  EXPECT_EQ(testing::exitCodeOfChild([] {
              TerminationSignals::listen();
              int heard = 0;
              const TerminationSignals signals([&] { ++heard; });
              ::kill(::getpid(), GetParam());
              ::kill(::getpid(), GetParam());
              if (heard != 0) return 1;
              if (!testing::runLoopUntil([&] { return heard > 0; })) return 2;
              QCoreApplication::processEvents();
              return heard == 1 ? 0 : 3;
            }),
            0);
}

TEST_P(TerminationSignalsTest, EndWhatIsStartedFromHereAsUsual) {
  EXPECT_EQ(testing::exitCodeOfChild([] {
              TerminationSignals::listen();
              const std::string command = "kill -" + std::to_string(GetParam()) + " $$";
              const int status = std::system(command.c_str());
              return WIFSIGNALED(status) && WTERMSIG(status) == GetParam() ? 0 : 1;
            }),
            0);
}

TEST_P(TerminationSignalsTest, StayIgnoredWhereWhoeverStartedItWantsThat) {
  EXPECT_EQ(testing::exitCodeOfChild([] {
              std::signal(GetParam(), SIG_IGN);
              TerminationSignals::listen();
              int heard = 0;
              const TerminationSignals signals([&] { ++heard; });
              ::kill(::getpid(), GetParam());
              QCoreApplication::processEvents();
              return heard;
            }),
            0);
}

}  // namespace
}  // namespace quillmere
