#include "inbox/InboxFilter.h"

#include "foundation/Localized.h"
#include "inbox/SearchedTexts.h"

namespace quillmere {

bool InboxFilter::passesScope(const ScreenshotItem& item, bool isUnavailable) const {
  switch (scope) {
    case Scope::all:
      return true;
    case Scope::pending:
      return !isUnavailable && item.state == ScreenshotItem::State::pending;
    case Scope::temporary:
      return !isUnavailable && item.state == ScreenshotItem::State::temporary;
    case Scope::saved:
      return !isUnavailable && item.state == ScreenshotItem::State::permanent;
    case Scope::unavailable:
      return isUnavailable;
  }
  return true;
}

std::vector<const ScreenshotItem*> InboxFilter::apply(std::vector<const ScreenshotItem*> items,
                                                      const UUIDSet& unavailableIDs) const {
  if (isOff()) return items;
  std::optional<TextSearch> search;
  if (const QString sought = trimmedText(); !sought.isEmpty()) search.emplace(searchCollator(searchLocale()), sought);
  std::erase_if(items, [&](const ScreenshotItem* item) {
    return !passesScope(*item, unavailableIDs.contains(item->id)) || (search && !isIn(*search, searchedTexts(*item)));
  });
  return items;
}

std::string_view codedValue(InboxFilter::Scope scope) {
  switch (scope) {
    case InboxFilter::Scope::all:
      return "all";
    case InboxFilter::Scope::pending:
      return "pending";
    case InboxFilter::Scope::temporary:
      return "temporary";
    case InboxFilter::Scope::saved:
      return "saved";
    case InboxFilter::Scope::unavailable:
      return "unavailable";
  }
  return {};
}

QString title(InboxFilter::Scope scope) {
  switch (scope) {
    case InboxFilter::Scope::all:
      return localized("All Screenshots");
    case InboxFilter::Scope::pending:
      return localized("Pending Screenshots");
    case InboxFilter::Scope::temporary:
      return localized("Temporary Screenshots");
    case InboxFilter::Scope::saved:
      return localized("Saved Screenshots");
    case InboxFilter::Scope::unavailable:
      return localized("Unavailable Screenshots");
  }
  return {};
}

}  // namespace quillmere
