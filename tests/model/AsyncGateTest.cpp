#include "model/AsyncGate.h"

#include <gmock/gmock.h>

#include <string>

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Log = std::vector<std::string>;

Task<> enterAndTell(AsyncGate* gate, std::string name, Log* log) {
  auto entering = gate->enter();
  const bool isIn = co_await entering;
  log->push_back(name + (isIn ? " is in" : " was turned away"));
}

/// Tells whether it was ended with its last handle gone.
struct Guard {
  bool* isGone;
  ~Guard() { *isGone = true; }
};
Task<> enterHolding(AsyncGate* gate, bool* isGone) {
  const Guard guard{isGone};
  auto entering = gate->enter();
  co_await entering;
}

TEST(AsyncGate, ItLetsInUpToItsLimitAtOnce) {
  AsyncGate gate(2);
  Log log;
  for (const char* name : {"a", "b", "c"}) enterAndTell(&gate, name, &log).detach();
  EXPECT_THAT(log, ElementsAre("a is in", "b is in"));
  EXPECT_EQ(gate.running(), 2);
  EXPECT_EQ(gate.waiting(), 1u);
}

TEST(AsyncGate, LeavingHandsThePlaceToTheFirstThatWaits) {
  AsyncGate gate(1);
  Log log;
  for (const char* name : {"a", "b", "c"}) enterAndTell(&gate, name, &log).detach();
  gate.leave();
  EXPECT_THAT(log, ElementsAre("a is in", "b is in"));
  EXPECT_EQ(gate.running(), 1);
  gate.leave();
  EXPECT_THAT(log, ElementsAre("a is in", "b is in", "c is in"));
  gate.leave();
  EXPECT_EQ(gate.running(), 0);
  EXPECT_EQ(gate.waiting(), 0u);
}

TEST(AsyncGate, ACancelledWaiterIsTurnedAwayAtOnceAndTakesNoPlace) {
  AsyncGate gate(1);
  Log log;
  enterAndTell(&gate, "a", &log).detach();
  const Task<> second = enterAndTell(&gate, "b", &log);
  enterAndTell(&gate, "c", &log).detach();
  second.cancel();
  EXPECT_THAT(log, ElementsAre("a is in", "b was turned away"));
  EXPECT_EQ(gate.running(), 1);
  EXPECT_EQ(gate.waiting(), 1u);
  gate.leave();
  EXPECT_EQ(log.back(), "c is in");
}

TEST(AsyncGate, CancellingAfterItWasLetInChangesNothing) {
  AsyncGate gate(1);
  Log log;
  const Task<> first = enterAndTell(&gate, "a", &log);
  const Task<> second = enterAndTell(&gate, "b", &log);
  gate.leave();
  first.cancel();
  second.cancel();
  EXPECT_THAT(log, ElementsAre("a is in", "b is in"));
  EXPECT_EQ(gate.running(), 1);
}

TEST(AsyncGate, ThoseThatWaitGoWithTheGate) {
  bool isGone = false;
  Task<> waiting;
  {
    AsyncGate gate(1);
    Log log;
    enterAndTell(&gate, "a", &log).detach();
    waiting = enterHolding(&gate, &isGone);
    EXPECT_FALSE(isGone);
  }
  EXPECT_TRUE(isGone);
  waiting.cancel();
}

}  // namespace
}  // namespace quillmere::testing
