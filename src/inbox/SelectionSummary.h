#pragma once

#include <vector>

#include "records/ScreenshotList.h"

namespace quillmere {

/// How many of the selected screenshots are in which state. What cannot be reached counts as that alone.
struct SelectionSummary {
  int pending = 0;
  int temporary = 0;
  int saved = 0;
  int unavailable = 0;

  static SelectionSummary of(const UUIDSet& ids, const ScreenshotList& items, const UUIDSet& unavailableIDs);
  int total() const { return pending + temporary + saved + unavailable; }

  struct Line {
    QString symbol;
    QString text;
    bool operator==(const Line&) const = default;
  };
  /// Of what there is any of.
  std::vector<Line> lines() const;
  bool operator==(const SelectionSummary&) const = default;
};

}  // namespace quillmere
