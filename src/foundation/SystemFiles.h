#pragma once

#include <cstdint>
#include <optional>

#include "foundation/FileStatus.h"

namespace quillmere {

/// What every system can do with files, each in a way of its own. Declared here for all rooms, implemented once in the
/// platform's folder; nothing else in the tree makes such a call.
namespace SystemFiles {

enum class LastLink { followed, seen };

/// One look at the path, counted from an open folder unless it is absolute. None when nothing could be seen; `errno`
/// says why.
std::optional<FileStatus> look(int folder, const char* path, LastLink link);

/// Has the kernel copy bytes from `offset` of one open file to the present position of another. Gives how many it
/// copied: fewer, or none, where the file systems won't.
int64_t copyRange(int from, int64_t offset, int64_t length, int to);

}  // namespace SystemFiles
}  // namespace quillmere
