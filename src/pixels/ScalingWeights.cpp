#include "pixels/ScalingWeights.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace quillmere {
namespace {

constexpr double kLobes = 3;

/// Of half turns. Not the library's sine, whose last bit depends on the processor.
double sineOf(double halfTurns) {
  const double whole = std::nearbyint(halfTurns);
  const double angle = (halfTurns - whole) * std::numbers::pi;
  constexpr int kTerms = 10;
  double term = angle;
  double sum = angle;
  for (int i = 1; i < kTerms; ++i) {
    term *= -angle * angle / (2.0 * i * (2.0 * i + 1));
    sum += term;
  }
  return std::fmod(whole, 2) == 0 ? sum : -sum;
}

double lanczos(double x) {
  if (x == 0) return 1;
  if (std::abs(x) >= kLobes) return 0;
  return kLobes * sineOf(x) * sineOf(x / kLobes) / (std::numbers::pi * std::numbers::pi * x * x);
}

/// The cells that a new pixel is made of.
struct Reach {
  int first;
  std::vector<double> shares;
};

Reach reachOf(const ScalingWeights& plan, int newPixel) {
  const double ratio = static_cast<double>(plan.from) / plan.cell / plan.to;  // cells to a new pixel
  const double middle = (newPixel + 0.5) * ratio;
  const int first = std::max(0, static_cast<int>(std::floor(middle - kLobes * ratio)));
  const int end = std::min(plan.cells, static_cast<int>(std::ceil(middle + kLobes * ratio)));
  Reach reach{first, {}};
  for (int cell = first; cell < end; ++cell) {
    const double coverage = static_cast<double>(plan.pixelsIn(cell)) / plan.cell;
    reach.shares.push_back(coverage * lanczos((cell + 0.5 - middle) / ratio));
  }
  return reach;
}

/// Rounded so that they add up to one exactly: a plain ground keeps its colour.
void writeWeights(const std::vector<double>& shares, int16_t* weights) {
  const double sum = std::accumulate(shares.begin(), shares.end(), 0.0);
  double reached = 0;
  int given = 0;
  for (size_t i = 0; i < shares.size(); ++i) {
    reached += shares[i];
    const int upTo = static_cast<int>(std::nearbyint(reached / sum * ScalingWeights::kOne));
    weights[i] = static_cast<int16_t>(upTo - given);
    given = upTo;
  }
}

}  // namespace

ScalingWeights ScalingWeights::of(int from, int to) {
  ScalingWeights plan{from, to, std::clamp(from / to / 2, 1, kLargestCell), 0, 0, {}, {}};
  plan.cells = (from + plan.cell - 1) / plan.cell;
  std::vector<Reach> reaches;
  size_t most = 0;
  for (int i = 0; i < to; ++i) {
    reaches.push_back(reachOf(plan, i));
    most = std::max(most, reaches.back().shares.size());
  }
  plan.taps = static_cast<int>(most + most % 2);
  plan.weights.resize(static_cast<size_t>(plan.taps) * reaches.size());
  for (size_t i = 0; i < reaches.size(); ++i) {
    plan.firsts.push_back(reaches[i].first);
    writeWeights(reaches[i].shares, plan.weights.data() + i * static_cast<size_t>(plan.taps));
  }
  return plan;
}

}  // namespace quillmere
