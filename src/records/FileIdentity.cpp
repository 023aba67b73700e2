#include "records/FileIdentity.h"

#include <cmath>

namespace quillmere {

bool isStableVolume(const std::string& volume) {
  return volume.find(':') == std::string::npos;
}

bool canBeSameVolume(const std::string& one, const std::string& other) {
  return one == other || (!isStableVolume(one) && !isStableVolume(other));
}

FileIdentity::Match FileIdentity::match(const FileIdentity& now) const {
  if (isComplete() && now.isComplete()) return isSameFile(now) ? Match::same : Match::different;
  const bool isSame = volume && now.volume && canBeSameVolume(*volume, *now.volume) && file == now.file && size &&
                      size == now.size && !creationDate && !now.creationDate && modificationDate &&
                      modificationDate == now.modificationDate;
  return isSame ? Match::same : Match::unknown;
}

bool FileIdentity::isSameFile(const FileIdentity& other) const {
  constexpr double kDateTolerance = 0.001;
  // Dates far from the reference lose the last digits of a thousandth; a difference that is one on paper stays one.
  constexpr double kRounding = 1e-6;
  return isComplete() && other.isComplete() && canBeSameVolume(*volume, *other.volume) && file == other.file &&
         size == other.size && std::abs(*creationDate - *other.creationDate) < kDateTolerance - kRounding;
}

}  // namespace quillmere
