#pragma once

#include <string>
#include <vector>

/// A limit of the form "this costs at most so many times that", both measured in one run.
struct RatioLimit {
  std::string benchmark;
  std::string peer;
  double atMost;
};
/// A limit in milliseconds.
struct TimeLimit {
  std::string benchmark;
  double atMost;
};

/// Runs every benchmark several times in random order, which spreads the machine's noise evenly, and prints the medians
/// and how they stand to the limits. It only reports: a busy machine must not fail a build.
int runWithLimits(int argc, char** argv, const std::vector<RatioLimit>& ratios, const std::vector<TimeLimit>& times);
