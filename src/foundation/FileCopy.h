#pragma once

#include <optional>
#include <string>

#include "foundation/FileURL.h"

namespace quillmere {

enum class CopyResult { done, destinationExists, failed };

/// Copies a regular file, and no link to one, to a name that must be free, and flushes the copy. A copy that fails
/// leaves nothing behind.
CopyResult copyFile(const FileURL& source, const FileURL& destination);

/// Copies a file into a folder under a name that is free: "<stem>.json", else with "-2" to "-100" behind the stem.
/// Gives the copy's place, or none.
std::optional<FileURL> copyAside(const FileURL& source, const FileURL& folder, const std::string& stem);

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
