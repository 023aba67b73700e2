#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "foundation/Date.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// What one look at a file tells. The look does not follow a symbolic link at the end of the path.
struct FileStatus {
  enum class Kind { regular, directory, symbolicLink, other };
  Kind kind = Kind::other;
  int64_t size = 0;
  Date modified;
  std::optional<Date> created;  ///< none where the file system keeps no birth time
  uint64_t inode = 0;
  uint32_t deviceMajor = 0;
  uint32_t deviceMinor = 0;

  bool isRegular() const { return kind == Kind::regular; }
};

/// One look. None when nothing can be seen at the path.
std::optional<FileStatus> fileStatus(const FileURL& url);
/// The same for a name in an open folder.
std::optional<FileStatus> fileStatus(int folder, const char* name);

/// Whether anything stands at the path; a link counts by what it points to.
bool fileExists(const FileURL& url);
/// Whether the system itself says that nothing stands at the path. A look that was refused says nothing: `fileExists`
/// and this may both be false.
bool isAbsent(const FileURL& url);
/// Exists, is a directory and can be read by this process.
bool isReadableDirectory(const FileURL& url);

/// What a directory listing says of an entry's kind without a closer look.
enum class EntryKind { regular, unknown, notRegular };

/// Calls `visit` for every entry but "." and "..", in the file system's order, with the folder's descriptor for
/// closer looks. False when the folder could not be opened or read to its end.
bool listDirectory(const FileURL& folder,
                   const std::function<void(int folder, const char* name, EntryKind kind)>& visit);

/// Reads a whole regular file; none on any failure, or when it is larger than `limit` bytes.
std::optional<std::string> readFile(const FileURL& url, int64_t limit = INT64_MAX);
/// The same, but none for a symbolic link: for a file that may not be swapped for another.
std::optional<std::string> readFileItself(const FileURL& url, int64_t limit);

}  // namespace quillmere
