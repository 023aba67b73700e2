#pragma once

#include <string_view>

namespace quillmere {

/// Whether a sync client names a file so while it receives it, before it gives it its name: Nextcloud and ownCloud,
/// Syncthing, rsync, rclone, Unison. Programs that save a file safely use other names.
bool isNameWhileReceived(std::string_view temporaryName, std::string_view name);

}  // namespace quillmere
