#include "reading/PictureBytes.h"

#include "foundation/FileStatus.h"

namespace quillmere {

std::optional<std::string> pictureBytes(const FileURL& url) {
  constexpr int64_t kMostFileBytes = int64_t{1} << 30;
  return readFileItself(url, kMostFileBytes);
}

}  // namespace quillmere
