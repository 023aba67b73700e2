#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace quillmere {

/// Short texts beside a PNG's picture, by their keywords; both in Latin-1.
using PngTexts = std::map<std::string, std::string, std::less<>>;

/// The texts of a file, compressed ones too, as far as they are undamaged. Of several with the same keyword the first;
/// of very many, or long ones, not all.
PngTexts readPngTexts(std::string_view file);

/// The PNG with nothing but what makes its picture: readers keep all else, unpacked, however much it is.
std::string withoutPngTexts(std::string_view file);

/// The PNG with these texts behind its header, where readers that stop at the picture still see them.
std::string withPngTexts(std::string_view file, const PngTexts& texts);

}  // namespace quillmere
