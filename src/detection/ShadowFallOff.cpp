#include "detection/ShadowFallOff.h"

#include <algorithm>
#include <cmath>

namespace quillmere::WindowShadow {
namespace {

// The background's line is fitted to samples that begin a little beyond the one it foretells.
constexpr int64_t kFitStart = 4;
constexpr int64_t kFitEnd = 19;
constexpr double kFitLength = kFitEnd - kFitStart + 1;
constexpr double kFitMiddle = 11.5;
/// The sum of the squared distances of 16 whole numbers from their mean.
constexpr double kFitSpread = 340;
constexpr int64_t kShortestProfile = 34;

constexpr double kLeastSigma = 0.05;
constexpr double kLeastThreshold = 0.5;
constexpr double kSigmas = 3;
constexpr double kBusyThreshold = 6.0;
constexpr double kClearSigma = 2.0;
constexpr int64_t kRiseDistance = 8;
constexpr double kRise = 0.8;
constexpr double kSigmaOfMedianDistance = 1.4826;

/// How much darker sample `i` is than the line through the samples beyond it foretells.
double residualAt(const std::vector<double>& profile, int64_t i) {
  double sum = 0;
  for (int64_t j = i + kFitStart; j <= i + kFitEnd; ++j) sum += profile[j];
  const double meanY = sum / kFitLength;
  const double meanX = static_cast<double>(i) + kFitMiddle;
  double covariance = 0;
  for (int64_t j = i + kFitStart; j <= i + kFitEnd; ++j) {
    covariance += (static_cast<double>(j) - meanX) * (profile[j] - meanY);
  }
  const double slope = covariance / kFitSpread;
  return slope * static_cast<double>(i) + (meanY - slope * meanX) - profile[i];
}

/// From the far end toward the window, the first two neighbours that reach the threshold and from which the residual
/// keeps rising: the shadow's outer end. Nullopt if there is none.
std::optional<int64_t> outerEnd(const std::vector<double>& residual, double threshold) {
  auto i = static_cast<int64_t>(residual.size()) - 1;
  while (i >= 2) {
    if (residual[i] < threshold || residual[i - 1] < threshold) {
      --i;
      continue;
    }
    if (kRise * residual[i] <= residual[std::max<int64_t>(i - kRiseDistance, 1)]) return i + 1;
    // A bump of its own, such as another window's edge.
    while (i >= 2 && residual[i] >= threshold) --i;
  }
  return std::nullopt;
}

}  // namespace

FallOff fallOff(const std::vector<double>& profile) {
  using Kind = FallOff::Kind;
  const auto length = static_cast<int64_t>(profile.size());
  if (length < kShortestProfile) return {};
  std::vector<double> residual(static_cast<size_t>(length - kFitEnd));
  for (int64_t i = 0; i < length - kFitEnd; ++i) residual[i] = residualAt(profile, i);

  // The farther half is taken to be background alone.
  const double sigma = robustSigma({residual.begin() + (length - kFitEnd - 1) / 2, residual.end()});
  const double threshold = std::max(kSigmas * std::max(sigma, kLeastSigma), kLeastThreshold);
  if (threshold >= kBusyThreshold) return {Kind::unreadable, 0, residual[1]};
  if (const auto end = outerEnd(residual, threshold)) return {Kind::extentFound, *end, residual[1]};
  return {sigma <= kClearSigma ? Kind::clear : Kind::unreadable, 0, residual[1]};
}

std::optional<double> median(std::vector<double> values) {
  if (values.empty()) return std::nullopt;
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return values.size() % 2 == 1 ? *middle : (*std::max_element(values.begin(), middle) + *middle) / 2;
}

double robustSigma(const std::vector<double>& values) {
  const auto middle = median(values);
  if (!middle) return 0;
  std::vector<double> distances;
  distances.reserve(values.size());
  for (const double value : values) distances.push_back(std::abs(value - *middle));
  return kSigmaOfMedianDistance * *median(std::move(distances));
}

}  // namespace quillmere::WindowShadow
