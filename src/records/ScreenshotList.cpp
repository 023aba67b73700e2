#include "records/ScreenshotList.h"

#include <algorithm>

namespace quillmere {

ScreenshotList::ScreenshotList(std::vector<ScreenshotItem> newestFirst) {
  rows_.reserve(newestFirst.size());
  for (auto item = newestFirst.rbegin(); item != newestFirst.rend(); ++item) rows_.push_back({std::move(*item), {}});
}

std::optional<size_t> ScreenshotList::indexOf(const UUID& id) const {
  if (positionsAreStale_) {
    positions_.clear();
    // From the oldest on, so that of two records with one id the newest is found.
    for (size_t i = 0; i < rows_.size(); ++i) positions_[rows_[i].item.id] = i;
    positionsAreStale_ = false;
  }
  const auto found = positions_.find(id);
  if (found == positions_.end()) return std::nullopt;
  return rows_.size() - 1 - found->second;
}

const ScreenshotItem* ScreenshotList::find(const UUID& id) const {
  const auto index = indexOf(id);
  return index ? &(*this)[*index] : nullptr;
}

void ScreenshotList::insertNewest(ScreenshotItem item) {
  if (!positionsAreStale_) positions_[item.id] = rows_.size();
  rows_.push_back({std::move(item), {}});
}

bool ScreenshotList::update(size_t index, const std::function<void(ScreenshotItem&)>& change) {
  Row& row = rows_[rows_.size() - 1 - index];
  const ScreenshotItem before = row.item;
  change(row.item);
  if (row.item == before) return false;
  row.range = {};
  return true;
}

std::vector<size_t> ScreenshotList::remove(const UUIDSet& ids) {
  std::vector<size_t> indices;
  for (size_t i = 0; i < size(); ++i) {
    if (ids.contains((*this)[i].id)) indices.push_back(i);
  }
  if (indices.empty()) return indices;
  std::erase_if(rows_, [&](const Row& row) { return ids.contains(row.item.id); });
  positionsAreStale_ = true;
  return indices;
}

void ScreenshotList::forgetRanges() {
  for (Row& row : rows_) row.range = {};
}

}  // namespace quillmere
