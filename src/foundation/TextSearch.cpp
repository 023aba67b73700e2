#include "foundation/TextSearch.h"

#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/usearch.h>

namespace quillmere {
namespace {

const UChar* units(const QString& text) {
  return reinterpret_cast<const UChar*>(text.utf16());
}

bool hasWeight(const UCollator& collator, const QString& text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UCollationElements, decltype(&ucol_closeElements)> elements(
      ucol_openElements(&collator, units(text), static_cast<int32_t>(text.size()), &status), &ucol_closeElements);
  if (U_FAILURE(status)) return true;
  for (int32_t element = ucol_next(elements.get(), &status); element != UCOL_NULLORDER;
       element = ucol_next(elements.get(), &status)) {
    if (ucol_primaryOrder(element) != 0) return true;
  }
  return false;
}

}  // namespace

void TextSearch::Close::operator()(UStringSearch* search) const {
  usearch_close(search);
}

TextSearch::TextSearch(const SearchCollator& collator, const QString& sought)
    : collator_(collator), sought_(sought), text_(QStringLiteral(" ")) {
  if (!collator_) return;
  hasWeight_ = quillmere::hasWeight(*collator_, sought_);
  if (!hasWeight_) return;
  UErrorCode status = U_ZERO_ERROR;
  search_.reset(usearch_openFromCollator(units(sought_), static_cast<int32_t>(sought_.size()), units(text_),
                                         static_cast<int32_t>(text_.size()), collator_.get(), nullptr, &status));
  if (U_FAILURE(status)) search_.reset();
}

bool TextSearch::isIn(const QString& text) {
  if (!hasWeight_) return true;
  // Without ICU's data the search is coarser, but there is one.
  if (!search_) return text.contains(sought_, Qt::CaseInsensitive);
  if (text.isEmpty()) return false;
  text_ = text;
  UErrorCode status = U_ZERO_ERROR;
  usearch_setText(search_.get(), units(text_), static_cast<int32_t>(text_.size()), &status);
  return usearch_first(search_.get(), &status) != USEARCH_DONE && U_SUCCESS(status);
}

}  // namespace quillmere
