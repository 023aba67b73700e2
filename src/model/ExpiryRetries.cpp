#include "model/ExpiryRetries.h"

#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

constexpr double kFirstRefusalDelay = 60.0;
constexpr double kLongestDelay = 3600.0;
constexpr int kMaxRefusals = 8;
/// Keeps the power below from overflowing.
constexpr int kMaxDoublings = 12;

double backOff(double first, int attempt) {
  return std::min(first * std::pow(2.0, std::min(attempt, kMaxDoublings) - 1), kLongestDelay);
}

}  // namespace

double ExpiryRetries::afterUnreachable(const UUID& id) {
  return backOff(unreachableDelay_, ++unreachable_[id]);
}

std::optional<double> ExpiryRetries::afterRefusal(const UUID& id) {
  const int attempt = ++refusals_[id];
  return attempt < kMaxRefusals ? std::optional(backOff(kFirstRefusalDelay, attempt)) : std::nullopt;
}

std::vector<UUID> ExpiryRetries::restart() {
  std::vector<UUID> ids;
  for (auto& [id, count] : refusals_) {
    count = 0;
    ids.push_back(id);
  }
  return ids;
}

bool ExpiryRetries::forget(const UUID& id) {
  unreachable_.erase(id);
  return refusals_.erase(id) > 0;
}

}  // namespace quillmere
