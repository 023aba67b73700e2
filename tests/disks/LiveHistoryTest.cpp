#include "disks/LiveHistory.h"

#include <cstdlib>
#include <iostream>

// Random histories over the live services. QUILLMERE_HISTORY_SEED=<seed> plays one again,
// QUILLMERE_HISTORY_COUNT=<count> another number of them.

namespace quillmere::testing {
namespace {

uint64_t numberFromEnvironment(const char* name, uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

TEST(LiveHistoryTest, NoHistoryLosesAFileARecordOrADecision) {
  const uint64_t first = numberFromEnvironment("QUILLMERE_HISTORY_SEED", 1);
  const uint64_t count =
      std::getenv("QUILLMERE_HISTORY_SEED") ? 1 : numberFromEnvironment("QUILLMERE_HISTORY_COUNT", 300);
  for (uint64_t seed = first; seed < first + count; ++seed) {
    const std::string failure = LiveHistory(seed).play();
    ASSERT_EQ(failure, "") << "QUILLMERE_HISTORY_SEED=" << seed;
  }
  std::cout << count << " histories\n";
}

}  // namespace
}  // namespace quillmere::testing
