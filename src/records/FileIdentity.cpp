#include "records/FileIdentity.h"

#include <cmath>

namespace quillmere {

bool FileIdentity::isSameFile(const FileIdentity& other) const {
  constexpr double kDateTolerance = 0.001;
  // Dates far from the reference lose the last digits of a thousandth; a difference that is one on paper stays one.
  constexpr double kRounding = 1e-6;
  return isComplete() && other.isComplete() && volume == other.volume && file == other.file && size == other.size &&
         std::abs(*creationDate - *other.creationDate) < kDateTolerance - kRounding;
}

}  // namespace quillmere
