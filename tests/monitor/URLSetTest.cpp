#include "monitor/URLSet.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

#include "support/Printing.h"

namespace quillmere {
namespace {

FileURL url(size_t number) {
  return FileURL::fromPath("/" + std::to_string(number));
}

TEST(URLSet, HoldsEachURLOnceInTheOrderInWhichTheyCame) {
  URLSet set{url(3), url(1), url(2)};
  set.insert(url(1));
  EXPECT_EQ(std::vector(set.begin(), set.end()), (std::vector{url(3), url(1), url(2)}));
  EXPECT_EQ(set.indexOf("/1"), 1u);
  EXPECT_TRUE(set.contains(url(2)));
  EXPECT_FALSE(set.contains(url(4)));
}

TEST(URLSet, IsFoundWhateverTheGuess) {
  const URLSet set{url(3), url(1), url(2)};
  for (size_t guess = 0; guess < 5; ++guess) {
    EXPECT_EQ(set.indexOf("/2", guess), 2u);
    EXPECT_EQ(set.indexOf("/9", guess), std::nullopt);
  }
}

TEST(URLSet, IsEqualWhateverTheOrder) {
  EXPECT_EQ((URLSet{url(1), url(2)}), (URLSet{url(2), url(1)}));
  EXPECT_NE((URLSet{url(1), url(2)}), (URLSet{url(1), url(3)}));
  EXPECT_NE((URLSet{url(1), url(2)}), (URLSet{url(1)}));
}

TEST(URLSet, CopyIsItsOwn) {
  URLSet original{url(1), url(2)};
  URLSet copy = original;
  original.erase(url(1));
  EXPECT_TRUE(copy.contains(url(1)));
  copy.insert(url(3));
  EXPECT_FALSE(original.contains(url(3)));
  original = copy;
  EXPECT_EQ(original, copy);
  const URLSet moved = std::move(copy);
  EXPECT_EQ(original, moved);
}

TEST(URLSet, AgreesWithAPlainSetAfterAnyChanges) {
  const unsigned seed = 20240102;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  URLSet set;
  std::set<FileURL> plain;
  for (int step = 0; step < 20'000; ++step) {
    const FileURL subject = url(random() % 200);
    if (random() % 2) {
      set.insert(subject);
      plain.insert(subject);
    } else {
      set.erase(subject);
      plain.erase(subject);
    }
    ASSERT_EQ(set.size(), plain.size());
    const FileURL asked = url(random() % 200);
    ASSERT_EQ(set.contains(asked), plain.contains(asked));
    if (const auto place = set.indexOf(asked.path(), random() % 200)) {
      ASSERT_EQ(set[*place], asked);
    }
  }
}

}  // namespace
}  // namespace quillmere
