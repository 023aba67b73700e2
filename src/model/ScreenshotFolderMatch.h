#pragma once

#include <QtCore/QString>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// Compares with symbolic links resolved and letter case ignored.
bool isSameFolder(const FileURL& a, const FileURL& b);

/// How the watched folder compares with the one that the desktop saves screenshots to.
struct ScreenshotFolderMatch {
  enum class Kind { differs, unknown, matches };
  Kind kind = Kind::unknown;
  std::optional<FileURL> folder;  ///< of `differs`: the desktop's

  static ScreenshotFolderMatch of(const std::optional<FileURL>& watched, const std::optional<FileURL>& desktops);
  bool operator==(const ScreenshotFolderMatch&) const = default;
};

/// A change of the desktop's screenshot folder that can be undone.
struct ScreenshotLocationChange {
  FileURL folder;                           ///< what was written
  std::optional<QString> previousRawValue;  ///< what stood there before; none when nothing did
  bool operator==(const ScreenshotLocationChange&) const = default;
};

}  // namespace quillmere
