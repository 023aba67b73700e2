#include "inbox/DetailNotes.h"

#include "foundation/Localized.h"

namespace quillmere {

std::vector<DetailNote> detailNotes(const ScreenshotItem& item, const DetailState& state) {
  using Kind = DetailNote::Kind;
  std::vector<DetailNote> notes;
  if (state.isUnavailable) {
    notes.push_back(
        {Kind::warning, {}, localized("Unavailable. The file can’t be found or its folder isn’t accessible.")});
  }
  if (item.arrivedFromElsewhere == true) {
    notes.push_back({Kind::plain, QStringLiteral("tray.and.arrow.down"),
                     localized("Arrived in your screenshot folder instead of being taken on this Mac, so Quillmere "
                               "saved it without asking.")});
  }
  if (item.sourceItemID && state.source) {
    notes.push_back({Kind::original, QStringLiteral("crop"), state.source->url.displayStem()});
  } else if (item.sourceItemID) {
    notes.push_back(
        {Kind::plain, QStringLiteral("crop"), localized("Cropped from a screenshot that’s no longer in the Inbox.")});
  }
  // A picture without text was read, too.
  if (!item.recognizedText && !state.isUnavailable && !state.isEvicted && !state.isReadingText) {
    notes.push_back({Kind::plain, QStringLiteral("text.viewfinder"),
                     localized("No text has been read from this screenshot yet, so searching won’t find words inside "
                               "it. Choose Extract Text to read it.")});
  }
  return notes;
}

}  // namespace quillmere
