#include "pixels/Instructions.h"

namespace quillmere {

Instructions bestInstructions() {
#if defined(__x86_64__)
  static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0;
  if (hasAvx2) return Instructions::avx2;
#endif
  return Instructions::baseline;
}

}  // namespace quillmere
