#include "foundation/Signal.h"

#include <gtest/gtest.h>
#include <string>

#include "foundation/SystemEvents.h"
#include "foundation/Weak.h"

namespace quillmere {
namespace {

TEST(Signal, TellsItsObserversInTheOrderOfConnecting) {
  Signal<int> signal;
  std::string log;
  const auto a = signal.connect([&](int number) { log += "a" + std::to_string(number); });
  const auto b = signal.connect([&](int number) { log += "b" + std::to_string(number); });
  signal(1);
  signal(2);
  EXPECT_EQ(log, "a1b1a2b2");
}

TEST(Signal, WithoutObserversTellsNobody) {
  Signal<>()();
}

TEST(Signal, ConnectionThatGoesEndsTheTelling) {
  Signal<> signal;
  int calls = 0;
  {
    const auto connection = signal.connect([&] { ++calls; });
    signal();
  }
  signal();
  EXPECT_EQ(calls, 1);
}

TEST(Signal, ConnectionCanBeMovedAndReset) {
  Signal<> signal;
  int calls = 0;
  Connection first = signal.connect([&] { ++calls; });
  Connection second = std::move(first);
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): a connection promises to be empty then
  EXPECT_TRUE(second);
  signal();
  second.reset();
  second.reset();
  EXPECT_FALSE(second);
  signal();
  EXPECT_EQ(calls, 1);
}

TEST(Signal, AssigningAConnectionEndsTheOneBefore) {
  Signal<> signal;
  std::string log;
  Connection connection = signal.connect([&] { log += "a"; });
  connection = signal.connect([&] { log += "b"; });
  signal();
  EXPECT_EQ(log, "b");
}

TEST(Signal, ConnectionMayOutliveIt) {
  Connection connection;
  {
    Signal<> signal;
    connection = signal.connect([] {});
  }
  connection.reset();
}

TEST(Signal, ObserverMayDisconnectItselfAndGoOn) {
  Signal<> signal;
  std::string log;
  Connection connection;
  const std::string large(100, 'x');  // beyond what a function object holds inside itself
  connection = signal.connect([&log, &connection, large] {
    connection.reset();
    log += large;
  });
  signal();
  signal();
  EXPECT_EQ(log, large);
}

TEST(Signal, ObserverMayDisconnectOneThatIsStillToBeTold) {
  Signal<> signal;
  std::string log;
  Connection second;
  const auto first = signal.connect([&] {
    log += "a";
    second.reset();
  });
  second = signal.connect([&] { log += "b"; });
  signal();
  EXPECT_EQ(log, "a");
}

TEST(Signal, ObserverThatConnectsDuringTheTellingIsToldTheNextTime) {
  Signal<> signal;
  std::string log;
  std::vector<Connection> connections;
  connections.push_back(signal.connect([&] {
    log += "a";
    if (connections.size() == 1) connections.push_back(signal.connect([&] { log += "b"; }));
  }));
  signal();
  EXPECT_EQ(log, "a");
  signal();
  EXPECT_EQ(log, "aab");
}

TEST(Signal, MayBeDestroyedByItsObserver) {
  auto signal = std::make_unique<Signal<>>();
  int calls = 0;
  const auto first = signal->connect([&] {
    ++calls;
    signal.reset();
  });
  const auto second = signal->connect([&] { ++calls; });
  (*signal)();
  EXPECT_GE(calls, 1);
}

TEST(Signal, MayTellWhileItTells) {
  Signal<int> signal;
  std::string log;
  const auto connection = signal.connect([&](int depth) {
    log += std::to_string(depth);
    if (depth < 3) signal(depth + 1);
  });
  signal(1);
  EXPECT_EQ(log, "123");
}

TEST(Weak, TurnsToNullWithTheLifeOfItsObject) {
  struct Object {
    int value = 7;
  } object;
  std::optional<Lifetime> life(std::in_place);
  const Weak<Object> weak = life->weak(&object);
  const Weak<Object> never;
  EXPECT_EQ(weak->value, 7);
  EXPECT_EQ(weak.get(), &object);
  EXPECT_FALSE(never);
  life.reset();
  EXPECT_FALSE(weak);
  EXPECT_EQ(weak.get(), nullptr);
}

}  // namespace
}  // namespace quillmere
