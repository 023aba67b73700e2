#pragma once

#include <vector>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// What is known of a shown screenshot besides its record.
struct DetailState {
  bool isUnavailable = false;
  bool isEvicted = false;
  bool isReadingText = false;
  const ScreenshotItem* source = nullptr;  ///< what it was cropped from, while that is in the Inbox
};

/// A sentence under the metadata.
struct DetailNote {
  enum class Kind {
    plain,
    warning,
    original,  ///< names the source, and leads there
  };
  Kind kind = Kind::plain;
  QString symbol;
  QString text;  ///< of `original` the name of the source, without its extension
  bool operator==(const DetailNote&) const = default;
};

/// In the order in which they stand.
std::vector<DetailNote> detailNotes(const ScreenshotItem& item, const DetailState& state);

}  // namespace quillmere
