#pragma once

#include <QtCore/QString>
#include <array>
#include <string_view>
#include <vector>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// What the Inbox shows of the records: what the search field holds, and the status chosen in the filter menu.
struct InboxFilter {
  enum class Scope { all, pending, temporary, saved, unavailable };
  /// In the menu's order.
  static constexpr std::array<Scope, 5> kScopes{Scope::all, Scope::pending, Scope::temporary, Scope::saved,
                                                Scope::unavailable};

  QString text;
  Scope scope = Scope::all;

  bool operator==(const InboxFilter&) const = default;

  /// Without the white space and line breaks at both ends.
  QString trimmedText() const { return text.trimmed(); }
  /// Every record is shown.
  bool isOff() const { return scope == Scope::all && trimmedText().isEmpty(); }
  /// A record whose file can't be reached has no other status than that.
  bool passesScope(const ScreenshotItem& item, bool isUnavailable) const;
  /// Those of the records that pass both, in their order; what was given where the filter is off. This is the slow way,
  /// record by record; SearchIndex is the fast one.
  std::vector<const ScreenshotItem*> apply(std::vector<const ScreenshotItem*> items,
                                           const UUIDSet& unavailableIDs) const;
};

std::string_view codedValue(InboxFilter::Scope scope);
/// As it stands in the menu.
QString title(InboxFilter::Scope scope);

}  // namespace quillmere
