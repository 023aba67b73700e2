#include "records/ScreenshotList.h"

#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

/// Few enough that a block is copied in a microsecond, many enough that the blocks of a long list are, too.
constexpr size_t kMostInBlock = 256;

}  // namespace

std::vector<const ScreenshotItem*> ScreenshotList::Snapshot::newestFirst() const {
  std::vector<const ScreenshotItem*> records;
  records.reserve(size_);
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    for (auto record = (*block)->rbegin(); record != (*block)->rend(); ++record) records.push_back(record->get());
  }
  return records;
}

ScreenshotList::ScreenshotList(std::vector<ScreenshotItem> newestFirst) {
  for (auto item = newestFirst.rbegin(); item != newestFirst.rend(); ++item) {
    add(std::make_shared<ScreenshotItem>(std::move(*item)));
  }
}

ScreenshotList::Place ScreenshotList::placeOf(size_t position) const {
  // No block before this one can have it, and where nothing was removed it is this one.
  const auto first = starts_.begin() + static_cast<std::ptrdiff_t>(position / kMostInBlock);
  const bool isFirst = first + 1 == starts_.end() || *(first + 1) > position;
  const auto next = isFirst ? first + 1 : std::upper_bound(first, starts_.end(), position);
  const auto block = static_cast<size_t>(next - starts_.begin()) - 1;
  return {block, position - starts_[block]};
}

const ScreenshotItem& ScreenshotList::operator[](size_t index) const {
  const Place place = placeOf(size_ - 1 - index);
  return *(*blocks_[place.block])[place.row];
}

std::optional<size_t> ScreenshotList::indexOf(const UUID& id) const {
  if (positionsAreStale_) {
    positions_.clear();
    size_t position = 0;
    // From the oldest on, so that of two records with one id the newest is found.
    for (const auto& block : blocks_) {
      for (const Record& record : *block) positions_[record->id] = position++;
    }
    positionsAreStale_ = false;
  }
  const auto found = positions_.find(id);
  if (found == positions_.end()) return std::nullopt;
  return size_ - 1 - found->second;
}

const ScreenshotItem* ScreenshotList::find(const UUID& id) const {
  const auto index = indexOf(id);
  return index ? &(*this)[*index] : nullptr;
}

void ScreenshotList::Snapshot::dateBack(Date moment) {
  const double seconds = moment.seconds + Date::kReferenceUnixSeconds;
  const timespec earlier{static_cast<time_t>(std::floor(seconds)), 0};
  if (earlier.tv_sec < taken_.tv_sec) taken_ = earlier;
}

ScreenshotList::Snapshot ScreenshotList::snapshot() const {
  Snapshot now;
  now.blocks_ = blocks_;
  now.size_ = size_;
  ::clock_gettime(CLOCK_REALTIME, &now.taken_);
  return now;
}

/// The block, which no snapshot has any more.
ScreenshotList::Block& ScreenshotList::ownBlock(size_t index) {
  auto& block = blocks_[index];
  if (block.use_count() > 1) {
    auto own = std::make_shared<Block>();
    own->reserve(kMostInBlock);
    *own = *block;
    block = std::move(own);
  }
  return *block;
}

void ScreenshotList::add(Record record) {
  if (blocks_.empty() || blocks_.back()->size() == kMostInBlock) {
    blocks_.push_back(std::make_shared<Block>());
    blocks_.back()->reserve(kMostInBlock);
    starts_.push_back(size_);
  }
  ownBlock(blocks_.size() - 1).push_back(std::move(record));
  ++size_;
}

void ScreenshotList::insertNewest(ScreenshotItem item) {
  if (!positionsAreStale_) positions_[item.id] = size_;
  add(std::make_shared<ScreenshotItem>(std::move(item)));
}

bool ScreenshotList::update(size_t index, const std::function<void(ScreenshotItem&)>& change) {
  const Place place = placeOf(size_ - 1 - index);
  const Record& record = (*blocks_[place.block])[place.row];
  const bool isShared = blocks_[place.block].use_count() > 1 || record.use_count() > 1;
  if (!isShared) {
    const ScreenshotItem before = *record;
    change(*record);
    return *record != before;
  }
  auto next = std::make_shared<ScreenshotItem>(*record);
  change(*next);
  if (*next == *record) return false;
  ownBlock(place.block)[place.row] = std::move(next);
  return true;
}

std::vector<size_t> ScreenshotList::remove(const UUIDSet& ids) {
  std::vector<size_t> indices;
  if (ids.empty()) return indices;
  const auto isRemoved = [&](const Record& record) { return ids.contains(record->id); };
  size_t index = 0;
  for (size_t block = blocks_.size(); block-- > 0;) {
    const size_t before = indices.size();
    for (auto record = blocks_[block]->rbegin(); record != blocks_[block]->rend(); ++record, ++index) {
      if (isRemoved(*record)) indices.push_back(index);
    }
    if (indices.size() > before) std::erase_if(ownBlock(block), isRemoved);
  }
  if (indices.empty()) return indices;
  std::erase_if(blocks_, [](const auto& block) { return block->empty(); });
  countStarts();
  positionsAreStale_ = true;
  return indices;
}

void ScreenshotList::countStarts() {
  starts_.clear();
  size_ = 0;
  for (const auto& block : blocks_) {
    starts_.push_back(size_);
    size_ += block->size();
  }
}

}  // namespace quillmere
