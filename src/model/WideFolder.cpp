#include "model/WideFolder.h"

#include "model/ScreenshotFolderMatch.h"

namespace quillmere {

std::optional<WideFolder> wideFolder(const FileURL& folder, const FileURL& home) {
  // First: a home may be the root, as in a container.
  if (isSameFolder(folder, FileURL::fromPath("/"))) return WideFolder::root;
  if (!home.isEmpty() && isSameFolder(folder, home)) return WideFolder::home;
  return std::nullopt;
}

}  // namespace quillmere
