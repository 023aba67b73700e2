#pragma once

#include <span>
#include <string_view>

namespace quillmere {

/// What capture tools put before or around the date in the names they give, in the languages they speak: "%s" is the
/// date; a word without it stands before the date. Composed (NFC), in lower case, with single blanks; in ascending
/// order. Written by `tools/capture-words` from the tools' own translations.
std::span<const std::u16string_view> captureWords();

}  // namespace quillmere
