#pragma once

#include <optional>
#include <string>

#include "foundation/FileURL.h"

namespace quillmere {

/// The bytes of a regular file that is not larger than any picture; none for a link to one.
std::optional<std::string> pictureBytes(const FileURL& url);

}  // namespace quillmere
