#pragma once

#include <QtCore/QByteArray>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Date.h"
#include "foundation/FileURL.h"
#include "platform/linux/files/MountTable.h"

namespace quillmere {

/// A place that can be found again after a rename or move. Its bytes are a small JSON object with "path" and, where
/// known, "volume", "file", "creationDate", "directory" and "mountPoint". A path alone is valid.
struct Bookmark {
  FileURL url;
  std::optional<std::string> volume;
  std::optional<uint64_t> file;
  std::optional<Date> creationDate;
  bool isDirectory = false;
  std::optional<std::string> mountPoint;  ///< of a directory

  /// Of a directory whose mount point is known.
  std::optional<ExpectedDisk> disk() const;

  QByteArray encoded() const;
  /// None for anything but such an object. The path is the coded URL's, so that any name survives.
  static std::optional<Bookmark> decode(const QByteArray& bytes);
};

}  // namespace quillmere
