#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/FileURL.h"

namespace quillmere {

/// Files in folders where other programs of this person write too, and where anything may stand under a name. Any
/// thread.
namespace OwnFiles {

/// A whole regular file that is this person's; none for a link, a pipe, what is longer than `limit` bytes, and on any
/// failure. Never waits for what stands there.
std::optional<std::string> read(const FileURL& url, int64_t limit);

/// Puts a file there in one piece, in the place of whatever had its name; readable by this person alone. The folder
/// must be this person's. False on any failure, which leaves nothing.
bool write(const FileURL& url, std::string_view bytes);

/// Removes the file, and what a write that was cut off has left of it.
void remove(const FileURL& url);
/// Only the latter.
void removeUnfinished(const FileURL& url);

/// Makes a folder of this person's alone, unless it is there; its parent must be.
void makeFolder(const FileURL& url);

}  // namespace OwnFiles
}  // namespace quillmere
