#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/FileURL.h"

namespace quillmere {

enum class CopyResult { done, destinationExists, failed };

/// Copies a regular file, and no link to one, to a name that must be free, and flushes the copy. A copy that fails
/// leaves nothing behind.
CopyResult copyFile(const FileURL& source, const FileURL& destination);

/// Copies a file into a folder under a name that is free: "<stem>.json", else with "-2" to "-100" behind the stem.
/// Gives the copy's place, or none.
std::optional<FileURL> copyAside(const FileURL& source, const FileURL& folder, const std::string& stem);

/// Writes a small file in one piece: beside it as "<name>.saving", flushed, renamed over it, the folder flushed. After
/// a crash or a power cut the old or the new bytes stand there whole. A file that is a symbolic link stays one, and one
/// that is there keeps its permissions; a new one is its owner's alone. Folders are made where they are missing. What
/// went wrong stands in errno.
bool replaceFile(const FileURL& file, std::string_view bytes);
/// Removes what a replacement that was cut off has left beside the file.
void removeUnfinished(const FileURL& file);

/// Copies a range of bytes between two open files by the kernel where it can, else through memory. `to` is written at
/// its present position. False on any failure, a source that ends early included.
bool copyBytes(int from, int64_t offset, int64_t length, int to);

/// Makes the contents of a file survive a power cut.
bool flushFile(const FileURL& file);
/// Makes the names in a folder survive a power cut.
bool flushFolder(const FileURL& folder);

/// Writes all of it; goes on after an interruption.
bool writeAll(int descriptor, const char* bytes, size_t count);

}  // namespace quillmere
