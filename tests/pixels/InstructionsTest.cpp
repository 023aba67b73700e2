#include "pixels/Instructions.h"

#include <gtest/gtest.h>
#include <fstream>
#include <sstream>

namespace quillmere {
namespace {

/// As the kernel lists them for the first processor.
std::set<std::string> processorFlags() {
  std::ifstream processors("/proc/cpuinfo");
  for (std::string line; std::getline(processors, line);) {
    if (!line.starts_with("flags")) continue;
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
  }
  return {};
}

TEST(Instructions, AreTheBestThatTheProcessorHas) {
  const auto flags = processorFlags();
  const bool hasAvx2 = flags.contains("avx2") && flags.contains("popcnt");
  EXPECT_EQ(bestInstructions(), hasAvx2 ? Instructions::avx2 : Instructions::baseline);
}

}  // namespace
}  // namespace quillmere
