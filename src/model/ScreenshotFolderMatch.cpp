#include "model/ScreenshotFolderMatch.h"

namespace quillmere {
namespace {

QString comparable(const FileURL& folder) {
  const FileURL standardized = folder.standardized();
  return standardized.resolvingSymlinks().value_or(standardized).displayPath().toLower();
}

}  // namespace

bool isSameFolder(const FileURL& a, const FileURL& b) {
  return comparable(a) == comparable(b);
}

ScreenshotFolderMatch ScreenshotFolderMatch::of(const std::optional<FileURL>& watched,
                                                const std::optional<FileURL>& desktops) {
  if (!watched || !desktops) return {Kind::unknown, std::nullopt};
  if (isSameFolder(*watched, *desktops)) return {Kind::matches, std::nullopt};
  return {Kind::differs, desktops};
}

}  // namespace quillmere
