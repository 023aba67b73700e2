#pragma once

#include <optional>

#include "foundation/FileURL.h"
#include "platform/linux/files/MountTable.h"
#include "records/FileIdentity.h"

namespace quillmere {

/// The identity of a regular file, read afresh; none for anything else, a symbolic link included.
std::optional<FileIdentity> liveFileIdentity(const FileURL& url, const MountTable& mounts);

}  // namespace quillmere
