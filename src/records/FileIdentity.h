#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Date.h"

namespace quillmere {

/// Identifies a file independently of its path.
struct FileIdentity {
  std::optional<std::string> volume;  ///< the file system's UUID, or else the textual device number
  uint64_t file = 0;                  ///< inode
  std::optional<Date> creationDate;   ///< birth time, where the file system keeps one
  std::optional<int64_t> size;        ///< length in bytes

  bool operator==(const FileIdentity&) const = default;

  bool isComplete() const { return volume && creationDate && size; }
  /// Identities that are not complete never match: inode numbers alone are reused too readily to follow a file by them.
  bool isSameFile(const FileIdentity& other) const;
  /// The same but for its size: the file was written to.
  bool isSameInode(const FileIdentity& other) const {
    FileIdentity resized = other;
    resized.size = size;
    return isSameFile(resized);
  }
};

}  // namespace quillmere
