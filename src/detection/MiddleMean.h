#pragma once

#include <cstdint>
#include <vector>

#include "pixels/Instructions.h"

namespace quillmere {

/// Samples are padded to whole steps of this many, with bytes of 255.
constexpr int64_t kSampleStep = 32;

/// Of each of `rows` rows of samples, `stride` apart: the mean of the middle half, from the (count / 4)th smallest up
/// to, but not including, the one at 3 * count / 4. `count` is between 1 and 8160.
std::vector<double> middleMeans(const uint8_t* samples, int64_t stride, int64_t count, int64_t rows,
                                Instructions instructions = bestInstructions());

/// Copies the first, third, fifth ... pixel, `count` in all.
void takeEverySecond(const uint8_t* from, uint8_t* to, int64_t count);

/// Turns 16 rows of 16 bytes into 16 columns; the strides are from row to row.
void transposeBlock(const uint8_t* from, int64_t fromStride, uint8_t* to, int64_t toStride);

}  // namespace quillmere
