#pragma once

#include <string_view>

namespace quillmere {

/// Whether the pictures that the primary one of a HEIF is made of can all be decoded in the end: none is made of
/// itself, nor are they so many times nested that it would take for ever. The library that decodes does not look.
bool areHeifReferencesSound(std::string_view file);

}  // namespace quillmere
