#include "foundation/Graphemes.h"

#include <unicode/ubrk.h>
#include <algorithm>
#include <memory>
#include <numeric>

namespace quillmere {
namespace {

/// Below the first combining mark every unit is a character, but for a carriage return before a line feed.
bool isOneUnitEach(QStringView text) {
  constexpr char16_t kFirstMark = 0x0300;
  return std::all_of(text.utf16(), text.utf16() + text.size(),
                     [](char16_t unit) { return unit < kFirstMark && unit != u'\r'; });
}

}  // namespace

std::vector<qsizetype> graphemeEnds(QStringView text) {
  if (isOneUnitEach(text)) {
    std::vector<qsizetype> ends(static_cast<size_t>(text.size()));
    std::iota(ends.begin(), ends.end(), qsizetype{1});
    return ends;
  }
  UErrorCode status = U_ZERO_ERROR;
  const auto* units = reinterpret_cast<const UChar*>(text.utf16());
  const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> characters(
      ubrk_open(UBRK_CHARACTER, "", units, static_cast<int32_t>(text.size()), &status), &ubrk_close);
  std::vector<qsizetype> ends;
  if (U_FAILURE(status)) return ends;
  for (int32_t end = ubrk_next(characters.get()); end != UBRK_DONE; end = ubrk_next(characters.get())) {
    ends.push_back(end);
  }
  return ends;
}

}  // namespace quillmere
