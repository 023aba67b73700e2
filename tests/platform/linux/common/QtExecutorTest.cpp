#include "platform/linux/common/QtExecutor.h"

#include <gtest/gtest.h>
#include <atomic>
#include <set>
#include <thread>

#include "support/EventLoop.h"

namespace quillmere {
namespace {

using std::chrono::milliseconds;
using testing::runLoopUntil;

/// Real but short times: what is tested is order, never duration.
class QtExecutorTest : public ::testing::Test {
 protected:
  Executor::DelayEnd note(int number) {
    return [this, number](bool elapsed) { ended.push_back(elapsed ? number : -number); };
  }
  /// Waits until that many delays have ended.
  bool end(size_t count) {
    return runLoopUntil([&] { return ended.size() >= count; });
  }
  std::vector<int> ended;
  std::unique_ptr<QtExecutor> executor = std::make_unique<QtExecutor>();
};

TEST_F(QtExecutorTest, DelaysEndInTheOrderOfTheirDeadlines) {
  executor->startDelay(milliseconds(400), note(3));
  executor->startDelay(milliseconds(50), note(1));
  executor->startDelay(milliseconds(200), note(2));
  ASSERT_TRUE(end(3));
  EXPECT_EQ(ended, (std::vector<int>{1, 2, 3}));
}

TEST_F(QtExecutorTest, WhoWaitsForTheBackgroundFindsAllOfItDoneAndNothingTold) {
  std::atomic<int> ran = 0;
  int told = 0;
  for (int i = 0; i < 6; ++i) {
    executor->runInBackground(
        [&] {
          std::this_thread::sleep_for(milliseconds(5));
          ++ran;
        },
        [&] { ++told; });
  }
  executor->finishBackground();
  EXPECT_EQ(ran, 6);
  EXPECT_EQ(told, 0);
  EXPECT_TRUE(runLoopUntil([&] { return told == 6; }));
}

TEST_F(QtExecutorTest, WhoWaitsForTheBackgroundOnlySoLongHearsThatItIsNotOver) {
  std::atomic<bool> mayEnd = false;
  executor->runInBackground(
      [&] {
        while (!mayEnd) std::this_thread::yield();
      },
      [] {});
  EXPECT_FALSE(executor->finishBackground(QDeadlineTimer(milliseconds(1))));
  mayEnd = true;
  EXPECT_TRUE(executor->finishBackground());
}

TEST_F(QtExecutorTest, ADelayIsOverOnlyAfterItsTime) {
  const Instant start = executor->instant();
  Instant stop;
  executor->startDelay(milliseconds(15), [&](bool) {
    stop = executor->instant();
    ended.push_back(1);
  });
  ASSERT_TRUE(end(1));
  EXPECT_GE(stop - start, milliseconds(15));
}

TEST_F(QtExecutorTest, ADelayOfNothingEndsInALaterTurn) {
  executor->startDelay(Duration(0), note(1));
  executor->startDelay(seconds(-5), note(2));
  EXPECT_TRUE(ended.empty());
  ASSERT_TRUE(end(2));
  EXPECT_EQ(ended, (std::vector<int>{1, 2}));
}

TEST_F(QtExecutorTest, ADelayStartedAtTheEndOfAnotherEndsInALaterTurn) {
  bool isInEnd = false;
  executor->startDelay(Duration(0), [&](bool) {
    isInEnd = true;
    executor->startDelay(Duration(0), [&](bool) { ended.push_back(isInEnd ? 1 : 2); });
    isInEnd = false;
  });
  ASSERT_TRUE(end(1));
  EXPECT_EQ(ended, std::vector<int>{2});
}

TEST_F(QtExecutorTest, ACancelledDelayNeverEnds) {
  const auto first = executor->startDelay(milliseconds(5), note(1));
  executor->startDelay(milliseconds(10), note(2));
  const auto third = executor->startDelay(milliseconds(15), note(3));
  executor->startDelay(milliseconds(20), note(4));
  executor->cancelDelay(first);
  executor->cancelDelay(third);
  executor->cancelDelay(third);
  executor->cancelDelay(4711);
  ASSERT_TRUE(end(2));
  EXPECT_EQ(ended, (std::vector<int>{2, 4}));
}

TEST_F(QtExecutorTest, ADelayMayCancelAnotherThatIsDueWithIt) {
  Executor::DelayID second = 0;
  executor->startDelay(milliseconds(1), [&](bool) {
    ended.push_back(1);
    executor->cancelDelay(second);
  });
  second = executor->startDelay(milliseconds(1), note(2));
  QThread::msleep(5);  // both are due when the loop looks
  executor->startDelay(milliseconds(1), note(3));
  ASSERT_TRUE(end(2));
  EXPECT_EQ(ended, (std::vector<int>{1, 3}));
}

TEST_F(QtExecutorTest, WhenItGoesAwayEveryDelayIsToldSo) {
  executor->startDelay(seconds(3600), note(1));
  executor->startDelay(seconds(7200), note(2));
  executor.reset();
  EXPECT_EQ(ended, (std::vector<int>{-1, -2}));
}

TEST_F(QtExecutorTest, WhatIsPostedRunsInOrderInALaterTurn) {
  for (int i = 1; i <= 3; ++i) executor->post([this, i] { ended.push_back(i); });
  EXPECT_TRUE(ended.empty());
  ASSERT_TRUE(end(3));
  EXPECT_EQ(ended, (std::vector<int>{1, 2, 3}));
}

TEST_F(QtExecutorTest, AnyThreadMayPostToTheMainThread) {
  const auto mainThread = std::this_thread::get_id();
  std::thread::id ranOn;
  std::thread poster([&] {
    executor->post([&] {
      ranOn = std::this_thread::get_id();
      ended.push_back(1);
    });
  });
  ASSERT_TRUE(end(1));
  poster.join();
  EXPECT_EQ(ranOn, mainThread);
}

/// What follows background work holds objects of the main thread, which end with it.
TEST_F(QtExecutorTest, WhatAThreadPostedEndsOnTheMainThread) {
  constexpr int kRounds = 2000;
  std::set<std::thread::id> endedOn;
  for (int i = 0; i < kRounds; ++i) {
    std::shared_ptr<void> held(nullptr, [&](void*) { endedOn.insert(std::this_thread::get_id()); });
    executor->runInBackground([] {}, [this, held = std::move(held)] { ended.push_back(1); });
  }
  ASSERT_TRUE(end(kRounds));
  EXPECT_EQ(endedOn, std::set{std::this_thread::get_id()});
}

TEST_F(QtExecutorTest, BackgroundWorkRunsElsewhereAndReturnsToTheMainThread) {
  const auto mainThread = std::this_thread::get_id();
  std::thread::id workedOn;
  std::thread::id doneOn;
  executor->runInBackground([&] { workedOn = std::this_thread::get_id(); },
                            [&] {
                              doneOn = std::this_thread::get_id();
                              ended.push_back(1);
                            });
  EXPECT_TRUE(ended.empty());
  ASSERT_TRUE(end(1));
  EXPECT_NE(workedOn, mainThread);
  EXPECT_EQ(doneOn, mainThread);
}

Task<> noteBackground(Executor& executor, std::vector<int>& ended) {
  auto working = executor.background([] { return 42; });
  ended.push_back(co_await working);
}

TEST_F(QtExecutorTest, ATaskGetsWhatItsBackgroundWorkReturned) {
  const Task<> task = noteBackground(*executor, ended);
  ASSERT_TRUE(end(1));
  EXPECT_EQ(ended, std::vector<int>{42});
  EXPECT_TRUE(task.isDone());
}

TEST_F(QtExecutorTest, ATaskWhoseExecutorGoesAwayNeverGoesOn) {
  const Task<> task = noteBackground(*executor, ended);
  executor.reset();
  QCoreApplication::processEvents();
  EXPECT_TRUE(ended.empty());
  EXPECT_FALSE(task.isDone());
}

TEST_F(QtExecutorTest, WorkUnderWayIsWaitedForWhenItGoesAway) {
  std::atomic<bool> isOver = false;
  executor->runInBackground(
      [&] {
        QThread::msleep(20);
        isOver = true;
      },
      [&] { ended.push_back(1); });
  executor.reset();
  EXPECT_TRUE(isOver) << "it may touch what is destroyed next";
  QCoreApplication::processEvents();
  EXPECT_TRUE(ended.empty());
}

}  // namespace
}  // namespace quillmere
