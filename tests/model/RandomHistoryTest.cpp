#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>

#include "model/HistoryPlayer.h"

// Random histories of a watched folder, played against the true model with the true monitor and its true scan of real
// files; the disk, bookmarks, time, background work and the person are the test's. What went wrong is printed as the
// fewest steps that still do it. QUILLMERE_HISTORY_SEED=<seed> plays one history again, QUILLMERE_HISTORY_COUNT=<count>
// another number of them.

namespace quillmere::testing {
namespace {

uint64_t numberFromEnvironment(const char* name, uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

struct History {
  HistoryWorld::BookmarkReach reach = HistoryWorld::BookmarkReach::everywhere;
  std::vector<HistoryStep> steps;
};

History historyOf(uint64_t seed) {
  std::mt19937_64 random(seed);
  const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
  uint32_t weights = 0;
  for (const auto& rule : HistoryPlayer::rules()) weights += rule.weight;

  History history;
  if (below(2) == 1) history.reach = HistoryWorld::BookmarkReach::ownAndWatchedFolder;
  const uint32_t length = 8 + below(40);
  while (history.steps.size() < length) {
    HistoryStep step;
    uint32_t place = below(weights);
    while (place >= HistoryPlayer::rules()[step.rule].weight) place -= HistoryPlayer::rules()[step.rule++].weight;
    step.which = below(1U << 16);
    step.how = below(1U << 16);
    if (HistoryPlayer::rules()[step.rule].canInterrupt && below(12) == 0) step.atQuestion = 1 + below(8);
    history.steps.push_back(step);
  }
  return history;
}

struct Outcome {
  std::optional<HistoryFailure> failure;
  std::vector<std::string> story;
};

Outcome outcomeOf(const History& history) {
  HistoryPlayer player(history.reach);
  player.play(history.steps);
  return {player.failure(), player.story()};
}

/// Leaves out steps as long as the same rule stays broken, in ever smaller pieces.
History shrunk(History history, const std::string& rule) {
  for (size_t piece = history.steps.size() / 2; piece > 0;) {
    bool hasShrunk = false;
    for (size_t at = 0; at < history.steps.size();) {
      History shorter = history;
      const auto first = shorter.steps.begin() + static_cast<std::ptrdiff_t>(at);
      shorter.steps.erase(first, first + static_cast<std::ptrdiff_t>(std::min(piece, shorter.steps.size() - at)));
      const auto outcome = outcomeOf(shorter);
      if (outcome.failure && outcome.failure->rule == rule) {
        history = std::move(shorter);
        hasShrunk = true;
      } else {
        at += piece;
      }
    }
    if (!hasShrunk || piece > history.steps.size()) piece /= 2;
  }
  return history;
}

std::string report(uint64_t seed, const History& history, const std::string& rule) {
  const auto fewest = outcomeOf(shrunk(history, rule));
  std::string text = "Seed " + std::to_string(seed) + " breaks: " + rule + "\n";
  for (const std::string& line : fewest.story) text += "  " + line + "\n";
  if (fewest.failure) text += "  => " + fewest.failure->text + "\n";
  return text;
}

TEST(RandomHistory, NoHistoryLosesAFileOrARecord) {
  constexpr uint64_t kHistories = 3000;
  constexpr int kMostReports = 2;  // a rule
  const bool isReplay = std::getenv("QUILLMERE_HISTORY_SEED") != nullptr;
  const uint64_t first = numberFromEnvironment("QUILLMERE_HISTORY_SEED", 1);
  const uint64_t count = isReplay ? 1 : numberFromEnvironment("QUILLMERE_HISTORY_COUNT", kHistories);
  std::map<std::string, int> broken;
  for (uint64_t seed = first; seed < first + count; ++seed) {
    const History history = historyOf(seed);
    const auto outcome = outcomeOf(history);
    if (!outcome.failure) continue;
    if (broken[outcome.failure->rule]++ < kMostReports) ADD_FAILURE() << report(seed, history, outcome.failure->rule);
  }
  for (const auto& [rule, times] : broken) std::cout << times << " broke: " << rule << "\n";
}

}  // namespace
}  // namespace quillmere::testing
