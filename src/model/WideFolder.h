#pragma once

#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// Folders into which other programs write for reasons of their own, so that hardly anybody means them by "the folder
/// with my screenshots".
enum class WideFolder { home, root };

/// Which one it is, by whatever name; none for any other folder, be it the top of another disk.
std::optional<WideFolder> wideFolder(const FileURL& folder, const FileURL& home);

}  // namespace quillmere
