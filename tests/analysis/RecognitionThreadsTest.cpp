#include "analysis/RecognitionThreads.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <atomic>
#include <future>
#include <latch>

namespace quillmere {
namespace {

using namespace std::chrono_literals;

TEST(RecognitionThreads, AreNoneBeforeThereIsWork) {
  const RecognitionThreads pool;
  EXPECT_EQ(pool.places(), 0);
}

TEST(RecognitionThreads, WorkAtTwoPlacesAtOnceAndNoMore) {
  RecognitionThreads pool;
  std::latch both(2);
  std::latch all(3);
  std::mutex mutex;
  std::vector<pid_t> threads;
  const auto meet = [&] {
    both.arrive_and_wait();
    const std::lock_guard lock(mutex);
    threads.push_back(::gettid());
    all.count_down();
  };
  pool.run(meet);
  pool.run(meet);
  pool.run([&] { all.count_down(); });
  all.wait();
  EXPECT_NE(threads[0], threads[1]);
  EXPECT_EQ(pool.places(), 2);
}

TEST(RecognitionThreads, KeepOneForWorkThatComesOneAfterTheOther) {
  RecognitionThreads pool;
  pid_t last = 0;
  for (int i = 0; i < 3; ++i) {
    std::promise<pid_t> used;
    pool.run([&] { used.set_value(::gettid()); });
    const pid_t now = used.get_future().get();
    if (i && pool.places() == 1) {
      EXPECT_EQ(now, last);
    }
    last = now;
  }
}

TEST(RecognitionThreads, EndAfterAWhileAndStartAnew) {
  RecognitionThreads pool(0ns);
  for (int i = 0; i < 20; ++i) {
    std::promise<void> done;
    pool.run([&] { done.set_value(); });
    done.get_future().wait();
    while (i % 2 && pool.places() != 0) std::this_thread::yield();
  }
}

TEST(RecognitionThreads, DropWhatHasNotBegunWhenTheyEnd) {
  std::atomic<int> begun = 0;
  std::atomic<bool> isEnding = false;
  {
    RecognitionThreads pool;
    std::latch both(3);
    for (int i = 0; i < 2; ++i) {
      pool.run([&] {
        ++begun;
        both.arrive_and_wait();
        while (!isEnding) std::this_thread::yield();
      });
    }
    both.arrive_and_wait();
    // Its destruction tells when the pool has dropped it.
    struct Teller {
      explicit Teller(std::atomic<bool>& toRaise) : flag(toRaise) {}
      std::atomic<bool>& flag;
      ~Teller() { flag = true; }
    };
    auto teller = std::make_shared<Teller>(isEnding);
    pool.run([&begun, teller = std::move(teller)] { ++begun; });
  }
  EXPECT_EQ(begun, 2);
}

}  // namespace
}  // namespace quillmere
