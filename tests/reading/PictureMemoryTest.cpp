#include "reading/PictureMemory.h"

#include <gtest/gtest.h>
#include <atomic>
#include <optional>
#include <thread>

namespace quillmere {
namespace {

/// Until it is so; a test that never comes to that hangs, and fails by its time limit.
template <typename Condition>
void await(const Condition& condition) {
  while (!condition()) std::this_thread::yield();
}

TEST(PictureMemoryTest, WhatFitsIsTakenAtOnceAndGivenBack) {
  PictureMemory memory(100);
  {
    const PictureMemory::Share one(memory, 60);
    const PictureMemory::Share other(memory, 40);
    EXPECT_EQ(memory.taken(), 100);
  }
  EXPECT_EQ(memory.taken(), 0);
}

TEST(PictureMemoryTest, WhatIsMoreThanAllIsAlone) {
  PictureMemory memory(100);
  const PictureMemory::Share share(memory, 1000);
  EXPECT_EQ(memory.taken(), 100);
}

TEST(PictureMemoryTest, WhatDoesNotFitWaits) {
  PictureMemory memory(100);
  std::optional<PictureMemory::Share> first(std::in_place, memory, 60);
  std::atomic<bool> isTaken = false;
  std::thread second([&] {
    const PictureMemory::Share share(memory, 60);
    isTaken = true;
  });
  await([&] { return memory.waiting() == 1; });
  EXPECT_FALSE(isTaken);
  EXPECT_EQ(memory.taken(), 60);
  first.reset();
  second.join();
  EXPECT_TRUE(isTaken);
  EXPECT_EQ(memory.taken(), 0);
}

TEST(PictureMemoryTest, ALargePictureIsNotOvertaken) {
  PictureMemory memory(100);
  std::optional<PictureMemory::Share> first(std::in_place, memory, 60);
  std::atomic<int> order = 0;
  int large = 0;
  int small = 0;
  std::thread second([&] {
    const PictureMemory::Share share(memory, 100);
    large = ++order;
  });
  await([&] { return memory.waiting() == 1; });
  std::thread third([&] {
    const PictureMemory::Share share(memory, 10);
    small = ++order;
  });
  await([&] { return memory.waiting() == 2; });
  first.reset();
  second.join();
  third.join();
  EXPECT_EQ(large, 1);
  EXPECT_EQ(small, 2);
}

}  // namespace
}  // namespace quillmere
