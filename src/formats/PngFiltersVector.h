#pragma once

#include "formats/PngFilters.h"

namespace quillmere {

/// The filters undone with vector instructions, several times as fast. Bit for bit what the plain form gives.
namespace PngFiltersVector {

/// Whether this processor has the instructions: SSE 4.1, which every x86-64 since 2008 has.
bool isPossible();
void undo(uint8_t kind, int channels, const PngFilters::Row& row);

}  // namespace PngFiltersVector
}  // namespace quillmere
