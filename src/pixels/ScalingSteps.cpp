#include "pixels/ScalingSteps.h"

#include <algorithm>
#include <cmath>

#include "pixels/ScalingStepsVector.h"

namespace quillmere {
namespace {

constexpr size_t kChannels = ScalingSteps::kChannels;

uint8_t channel(const QRgb* row, size_t i) {
  return static_cast<uint8_t>(row[i / kChannels] >> (8 * (i % kChannels)));
}

void premultiply(const QRgb* row, size_t width, QRgb* result) {
  for (size_t x = 0; x < width; ++x) result[x] = qPremultiply(row[x]);
}

void sumRows(const QRgb* const* rows, int count, size_t width, uint16_t* sums) {
  for (size_t i = 0; i < kChannels * width; ++i) {
    int sum = 0;
    for (int row = 0; row < count; ++row) sum += channel(rows[row], i);
    sums[i] = static_cast<uint16_t>(sum);
  }
}

void average(const uint16_t* sums, int cell, int rows, size_t cells, int16_t* levels) {
  const auto stride = kChannels * static_cast<size_t>(cell);
  const float factor = ScalingSteps::factorOf(cell * rows);
  for (size_t i = 0; i < kChannels * cells; ++i) {
    const uint16_t* first = sums + i / kChannels * stride + i % kChannels;
    int sum = 0;
    for (size_t k = 0; k < stride; k += kChannels) sum += first[k];
    levels[i] = static_cast<int16_t>(std::nearbyint(static_cast<float>(sum) * factor));
  }
}

void widen(const QRgb* row, size_t width, int16_t* levels) {
  for (size_t i = 0; i < kChannels * width; ++i) {
    levels[i] = static_cast<int16_t>(channel(row, i) << ScalingSteps::kLevelBits);
  }
}

void mixRows(const int16_t* const* rows, const int16_t* weights, int taps, size_t count, int16_t* levels) {
  constexpr int kBits = ScalingSteps::kWeightBits;
  for (size_t i = 0; i < kChannels * count; ++i) {
    int sum = 1 << (kBits - 1);
    for (int tap = 0; tap < taps; ++tap) sum += rows[tap][i] * weights[tap];
    levels[i] = static_cast<int16_t>(std::clamp<int>(sum >> kBits, INT16_MIN, INT16_MAX));
  }
}

void mixPixels(const int16_t* levels, const ScalingWeights& plan, QRgb* row) {
  constexpr int kBits = ScalingSteps::kWeightBits + ScalingSteps::kLevelBits;
  for (int x = 0; x < plan.to; ++x) {
    const int16_t* first = levels + kChannels * static_cast<size_t>(plan.firsts[static_cast<size_t>(x)]);
    const int16_t* weights = plan.weightsOf(x);
    QRgb pixel = 0;
    for (size_t i = 0; i < kChannels; ++i) {
      int sum = 1 << (kBits - 1);
      for (int tap = 0; tap < plan.taps; ++tap) sum += first[kChannels * static_cast<size_t>(tap) + i] * weights[tap];
      pixel |= static_cast<QRgb>(std::clamp(sum >> kBits, 0, 255)) << (8 * i);
    }
    row[x] = pixel;
  }
}

}  // namespace

const ScalingSteps& plainScalingSteps() {
  static const ScalingSteps steps{&premultiply, &sumRows, &average, &widen, &mixRows, &mixPixels};
  return steps;
}

const ScalingSteps& scalingSteps(Instructions instructions) {
  const ScalingSteps* vector = vectorScalingSteps(instructions);
  return vector ? *vector : plainScalingSteps();
}

}  // namespace quillmere
