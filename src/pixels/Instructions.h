#pragma once

namespace quillmere {

/// What the loops over pixels may use. Their results are the same.
enum class Instructions {
  baseline,  ///< what every processor of the architecture has
  avx2,      ///< also AVX2 and POPCNT
};

/// The most that this processor has.
Instructions bestInstructions();

}  // namespace quillmere
