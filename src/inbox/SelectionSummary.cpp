#include "inbox/SelectionSummary.h"

#include "foundation/Localized.h"
#include "inbox/ScreenshotStatus.h"

namespace quillmere {

using State = ScreenshotItem::State;

SelectionSummary SelectionSummary::of(const UUIDSet& ids, const ScreenshotList& items, const UUIDSet& unavailableIDs) {
  SelectionSummary summary;
  for (const UUID& id : ids) {
    const ScreenshotItem* item = items.find(id);
    if (!item) continue;
    if (unavailableIDs.contains(id)) {
      ++summary.unavailable;
      continue;
    }
    switch (item->state) {
      case State::pending:
        ++summary.pending;
        break;
      case State::temporary:
        ++summary.temporary;
        break;
      case State::permanent:
        ++summary.saved;
        break;
    }
  }
  return summary;
}

std::vector<SelectionSummary::Line> SelectionSummary::lines() const {
  std::vector<Line> lines;
  if (pending > 0) lines.push_back({statusSymbol(State::pending), localized("%lld waiting for a decision", {pending})});
  if (temporary > 0) lines.push_back({statusSymbol(State::temporary), localized("%lld Temporary", {temporary})});
  if (saved > 0) lines.push_back({statusSymbol(State::permanent), localized("%lld Saved", {saved})});
  if (unavailable > 0) {
    lines.push_back({QStringLiteral("exclamationmark.triangle.fill"), localized("%lld unavailable", {unavailable})});
  }
  return lines;
}

}  // namespace quillmere
