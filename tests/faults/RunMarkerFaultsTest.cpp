#include <gtest/gtest.h>
#include <algorithm>

#include "platform/linux/session/RunMarker.h"
#include "support/FaultyCalls.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

constexpr Date kNow{700000000};

TEST(RunMarkerFaults, ItsNameIsFlushedAtOnce) {
  const TemporaryFolder folder;
  const FileURL support = folder.file("support");
  const auto made = callsMade(folder.url(), [&] {
    const RunMarker marker(support.appending("running"), support.appending("screenshots.json"), kNow);
    EXPECT_FALSE(marker.isTaken());
  });
  const bool isFlushed = std::any_of(made.begin(), made.end(), [&](const FaultyCalls::Made& one) {
    return one.call == Call::flush && one.path == support.path();
  });
  EXPECT_TRUE(isFlushed) << "after a power cut nobody would look for what came in this run";
}

TEST(RunMarkerFaults, OneThatCannotBeFlushedHoldsAllTheSame) {
  const TemporaryFolder folder;
  const FileURL support = folder.file("support");
  FaultyCalls faults(folder.url());
  faults.failEvery(Call::flush, EIO);
  const RunMarker marker(support.appending("running"), support.appending("screenshots.json"), kNow);
  const RunMarker second(support.appending("running"), support.appending("screenshots.json"), kNow);
  EXPECT_FALSE(marker.isTaken());
  EXPECT_TRUE(second.isTaken());
}

}  // namespace
}  // namespace quillmere::testing
