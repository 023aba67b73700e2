#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Date.h"

namespace quillmere {

/// Whether two names of volumes can mean one file system. Where a file system has no UUID its name is the textual
/// device number, which the next mount or start may give to another: two such names say nothing.
bool canBeSameVolume(const std::string& one, const std::string& other);
/// Whether it is a UUID, which means the same file system for ever.
bool isStableVolume(const std::string& volume);

/// Identifies a file independently of its path.
struct FileIdentity {
  std::optional<std::string> volume;  ///< the file system's UUID, or else the textual device number
  uint64_t file = 0;                  ///< inode
  std::optional<Date> creationDate;   ///< birth time, where the file system keeps one
  std::optional<int64_t> size;        ///< length in bytes
  /// When it was last written to; only where the file system keeps no birth time.
  std::optional<Date> modificationDate = std::nullopt;

  bool operator==(const FileIdentity&) const = default;

  bool isComplete() const { return volume && creationDate && size; }
  enum class Match { same, different, unknown };
  /// Whether the file that now has this identity is the one that had the other, also where there are no birth times:
  /// what has the same inode, size and date of writing is the same. In all else that cannot be told for sure it is
  /// unknown.
  Match match(const FileIdentity& now) const;
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
