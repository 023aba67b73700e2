#pragma once

#include <QtCore/QString>
#include <memory>

#include "foundation/SearchCollator.h"

struct UStringSearch;

namespace quillmere {

/// Whether a text stands in another, as ICU's own search says: thorough and slow, some hundred nanoseconds a character.
///
/// A hit covers whole characters: it neither begins nor ends inside one that counts as several letters ("s" isn't in
/// "ß"), nor does it begin inside a character with its marks; it may end before a mark that has a weight of its own. A
/// text with nothing that has a weight, such as a lone accent, is in every text, like an empty one.
class TextSearch {
 public:
  TextSearch(const SearchCollator& collator, const QString& sought);
  TextSearch(const TextSearch&) = delete;
  TextSearch& operator=(const TextSearch&) = delete;

  /// One thread at a time.
  bool isIn(const QString& text);

 private:
  SearchCollator collator_;
  QString sought_;
  QString text_;  // ICU looks at it as long as it has it
  bool hasWeight_ = true;
  struct Close {
    void operator()(UStringSearch* search) const;
  };
  std::unique_ptr<UStringSearch, Close> search_;
};

}  // namespace quillmere
