#pragma once

#include <optional>

#include "foundation/FileURL.h"
#include "platform/linux/files/MountTable.h"
#include "records/FileIdentity.h"

namespace quillmere {

/// The identity of a regular file, read afresh; none for anything else, a symbolic link included.
std::optional<FileIdentity> liveFileIdentity(const FileURL& url, const MountTable& mounts);

/// Whether files in this folder have birth times, and their disk a name that no other one gets. True of a folder that
/// cannot be looked at.
bool keepsIdentities(const FileURL& folder, const MountTable& mounts);

}  // namespace quillmere
