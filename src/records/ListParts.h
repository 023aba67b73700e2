#pragma once

#include <optional>
#include <vector>

#include "foundation/FileURL.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// Reads a long list in two halves, on two threads. None where it is not the list as this version writes it, whole:
/// then it is to be read as one, which finds out what is wrong with it.
std::optional<std::vector<ScreenshotItem>> readInParts(const FileURL& file);

}  // namespace quillmere
