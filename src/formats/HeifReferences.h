#pragma once

#include <cstdint>
#include <string_view>

namespace quillmere {

/// How the pictures that one of a HEIF is made of can be decoded. The library that decodes does not look.
enum class HeifReferences {
  sound,
  costly,  ///< more parts than any camera makes, each of which takes a decoder of its own
  endless  ///< one is made of itself, or of what is no picture; or they cannot be read
};
HeifReferences heifReferences(std::string_view file);

/// How many bytes describe the pictures, their colour profiles among them: the library takes them one by one.
int64_t heifDescriptionBytes(std::string_view file);

}  // namespace quillmere
