#pragma once

#include <QtGui/QRgb>
#include <cstddef>
#include <cstdint>

#include "pixels/Instructions.h"
#include "pixels/ScalingWeights.h"

namespace quillmere {

/// The loops of making a picture smaller. Blue, green, red and alpha of a pixel stand next to each other, as in QRgb.
/// A level of 16 bits is a byte's value in 64ths; between the two weighted means it may be below 0 and above 255.
struct ScalingSteps {
  static constexpr int kChannels = 4;
  static constexpr int kLevelBits = 6;
  static constexpr int kWeightBits = 14;
  static_assert(1 << kWeightBits == ScalingWeights::kOne);

  /// What a sum is multiplied by to be the mean level of so many pixels.
  static float factorOf(int pixels) { return static_cast<float>(1 << kLevelBits) / static_cast<float>(pixels); }

  /// Colours multiplied by their alpha.
  void (*premultiply)(const QRgb* row, size_t width, QRgb* result);
  /// The sums of `count` rows, at most `ScalingWeights::kLargestCell`.
  void (*sumRows)(const QRgb* const* rows, int count, size_t width, uint16_t* sums);
  /// The mean levels of cells `cell` pixels wide, from the sums of `rows` rows.
  void (*average)(const uint16_t* sums, int cell, int rows, size_t cells, int16_t* levels);
  /// A row of pixels as levels.
  void (*widen)(const QRgb* row, size_t width, int16_t* levels);
  /// The weighted mean of `taps` rows of `count` pixels' levels. `taps` is even.
  void (*mixRows)(const int16_t* const* rows, const int16_t* weights, int taps, size_t count, int16_t* levels);
  /// A finished row. `levels` are read as far as the weights reach, be they zero.
  void (*mixPixels)(const int16_t* levels, const ScalingWeights& plan, QRgb* row);
};

/// Bit for bit what the plain ones give.
const ScalingSteps& scalingSteps(Instructions instructions = bestInstructions());
const ScalingSteps& plainScalingSteps();

}  // namespace quillmere
