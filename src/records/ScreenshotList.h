#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// The records, newest first. It remembers where in the list file each unchanged record stands, so that a save copies
/// those bytes instead of encoding the record again; every change goes through `update`, which forgets the place.
class ScreenshotList {
 public:
  /// Bytes of the list file, from its start. A length of 0 means that the record has to be encoded.
  struct Range {
    int64_t offset = 0;
    int64_t length = 0;
  };

  ScreenshotList() = default;
  explicit ScreenshotList(std::vector<ScreenshotItem> newestFirst);

  size_t size() const { return rows_.size(); }
  bool empty() const { return rows_.empty(); }
  const ScreenshotItem& operator[](size_t index) const { return rows_[rows_.size() - 1 - index].item; }
  std::optional<size_t> indexOf(const UUID& id) const;
  const ScreenshotItem* find(const UUID& id) const;
  template <typename Visit>
  void forEach(Visit visit) const {
    for (auto row = rows_.rbegin(); row != rows_.rend(); ++row) visit(row->item);
  }

  void insertNewest(ScreenshotItem item);
  /// Changes the record at `index`; answers whether it became another value.
  bool update(size_t index, const std::function<void(ScreenshotItem&)>& change);
  /// Removes those records and gives the indices that they had, ascending.
  std::vector<size_t> remove(const UUIDSet& ids);

  Range range(size_t index) const { return rows_[rows_.size() - 1 - index].range; }
  void setRange(size_t index, Range range) { rows_[rows_.size() - 1 - index].range = range; }
  void forgetRanges();

 private:
  struct Row {
    ScreenshotItem item;
    Range range;
  };
  // Oldest first, so that an arrival moves nothing and keeps `positions_` true.
  std::vector<Row> rows_;
  mutable UUIDMap<size_t> positions_;
  mutable bool positionsAreStale_ = true;
};

}  // namespace quillmere
