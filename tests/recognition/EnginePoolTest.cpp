#include "recognition/EnginePool.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#include <atomic>
#include <future>
#include <latch>

namespace quillmere {
namespace {

using namespace std::chrono_literals;

TEST(EnginePool, StartsNoThreadBeforeThereIsWork) {
  const EnginePool pool;
  EXPECT_EQ(pool.places(), 0);
}

TEST(EnginePool, WorksAtTwoPlacesAtOnceAndNoMore) {
  EnginePool pool;
  std::latch both(2);
  std::latch all(3);
  std::mutex mutex;
  std::vector<TextRecognizer*> recognizers;
  const auto meet = [&](TextRecognizer& recognizer) {
    both.arrive_and_wait();
    const std::lock_guard lock(mutex);
    recognizers.push_back(&recognizer);
    all.count_down();
  };
  pool.run(meet);
  pool.run(meet);
  pool.run([&](TextRecognizer&) { all.count_down(); });
  all.wait();
  EXPECT_NE(recognizers[0], recognizers[1]);
  EXPECT_EQ(pool.places(), 2);
}

TEST(EnginePool, KeepsOneEngineForWorkThatComesOneAfterTheOther) {
  EnginePool pool;
  TextRecognizer* last = nullptr;
  for (int i = 0; i < 3; ++i) {
    std::promise<TextRecognizer*> used;
    pool.run([&](TextRecognizer& recognizer) { used.set_value(&recognizer); });
    TextRecognizer* now = used.get_future().get();
    if (i && pool.places() == 1) {
      EXPECT_EQ(now, last);
    }
    last = now;
  }
}

TEST(EnginePool, GivesWayToOtherThreads) {
  EnginePool pool;
  std::promise<int> nice;
  pool.run([&](TextRecognizer&) { nice.set_value(::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()))); });
  const int own = ::getpriority(PRIO_PROCESS, 0);
  EXPECT_EQ(nice.get_future().get(), std::max(own, 10));
}

TEST(EnginePool, LetsTheEngineGoAfterAWhileAndStartsAnew) {
  EnginePool pool(0ns);
  for (int i = 0; i < 20; ++i) {
    std::promise<void> done;
    pool.run([&](TextRecognizer&) { done.set_value(); });
    done.get_future().wait();
    while (i % 2 && pool.places() != 0) std::this_thread::yield();
  }
}

TEST(EnginePool, DropsWhatHasNotBegunWhenItEnds) {
  std::atomic<int> begun = 0;
  std::atomic<bool> isEnding = false;
  {
    EnginePool pool;
    std::latch both(3);
    for (int i = 0; i < 2; ++i) {
      pool.run([&](TextRecognizer&) {
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
    pool.run([&begun, teller = std::move(teller)](TextRecognizer&) { ++begun; });
  }
  EXPECT_EQ(begun, 2);
}

}  // namespace
}  // namespace quillmere
