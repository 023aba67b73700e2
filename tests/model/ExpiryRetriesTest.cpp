#include "model/ExpiryRetries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

TEST(ExpiryRetries, RefusalsDoubleTheDelayAndTheEighthIsTheLast) {
  ExpiryRetries retries(60);
  std::vector<double> delays;
  for (int attempt = 1; attempt <= 7; ++attempt) delays.push_back(retries.afterRefusal(uuid(1)).value_or(-1));
  EXPECT_THAT(delays, ElementsAre(60, 120, 240, 480, 960, 1920, 3600));
  EXPECT_EQ(retries.afterRefusal(uuid(1)), std::nullopt);
  EXPECT_EQ(retries.afterRefusal(uuid(1)), std::nullopt);
  EXPECT_EQ(retries.refusedCount(), 1);
}

TEST(ExpiryRetries, LooksForAnUnreachableFileNeverEnd) {
  ExpiryRetries retries(5);
  EXPECT_EQ(retries.afterUnreachable(uuid(1)), 5);
  EXPECT_EQ(retries.afterUnreachable(uuid(1)), 10);
  EXPECT_EQ(retries.afterUnreachable(uuid(2)), 5) << "each record counts for itself";
  for (int attempt = 0; attempt < 5000; ++attempt) retries.afterUnreachable(uuid(1));
  EXPECT_EQ(retries.afterUnreachable(uuid(1)), 3600);
  EXPECT_EQ(retries.refusedCount(), 0) << "none of them is a refusal";
}

TEST(ExpiryRetries, ARestartGivesEachRefusedRecordAllItsAttempts) {
  ExpiryRetries retries(60);
  for (int attempt = 0; attempt < 8; ++attempt) retries.afterRefusal(uuid(1));
  retries.afterRefusal(uuid(2));
  retries.afterUnreachable(uuid(3));
  EXPECT_THAT(retries.restart(), UnorderedElementsAre(uuid(1), uuid(2)));
  EXPECT_EQ(retries.refusedCount(), 2) << "they stay in the count until they succeed";
  EXPECT_EQ(retries.afterRefusal(uuid(1)), 60);
  EXPECT_EQ(retries.afterRefusal(uuid(2)), 60);
}

TEST(ExpiryRetries, WhatIsForgottenBeginsAnew) {
  ExpiryRetries retries(60);
  retries.afterRefusal(uuid(1));
  retries.afterUnreachable(uuid(1));
  retries.afterUnreachable(uuid(2));
  EXPECT_TRUE(retries.forget(uuid(1)));
  EXPECT_FALSE(retries.forget(uuid(1)));
  EXPECT_FALSE(retries.forget(uuid(2))) << "it was never refused";
  EXPECT_EQ(retries.refusedCount(), 0);
  EXPECT_THAT(retries.restart(), IsEmpty());
  EXPECT_EQ(retries.afterRefusal(uuid(1)), 60);
  EXPECT_EQ(retries.afterUnreachable(uuid(1)), 60);
  EXPECT_EQ(retries.afterUnreachable(uuid(2)), 60);
}

}  // namespace
}  // namespace quillmere::testing
