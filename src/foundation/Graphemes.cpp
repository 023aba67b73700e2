#include "foundation/Graphemes.h"

#include <unicode/ubrk.h>
#include <memory>

namespace quillmere {

std::vector<qsizetype> graphemeEnds(QStringView text) {
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
