#include "platform/linux/session/TerminationSignals.h"

#include <unistd.h>
#include <csignal>

#include "support/ChildProcess.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class TerminationSignalsTest : public ::testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

/// In a process of its own, whose end an unheard signal would be.
TEST_P(TerminationSignalsTest, ArriveAsOneCallOfTheLoop) {
  EXPECT_EQ(testing::exitCodeOfChild([] {
              TerminationSignals::block();
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

}  // namespace
}  // namespace quillmere
