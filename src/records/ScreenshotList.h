#pragma once

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// The records, newest first. Main thread only, but for what a `Snapshot` has, which nobody changes: a record that a
/// snapshot shares is replaced by its next value. A reference to such a record goes on telling what it was, for as long
/// as a snapshot has it.
class ScreenshotList {
  using Record = std::shared_ptr<ScreenshotItem>;
  using Block = std::vector<Record>;  // oldest first, never empty, `kMostInBlock` at most

 public:
  /// The records of one moment, for another thread. Taking one copies no record. It is taken and let go of on the main
  /// thread, which tells by the number of owners whether it may change a record.
  class Snapshot {
   public:
    size_t size() const { return size_; }
    std::vector<const ScreenshotItem*> newestFirst() const;
    /// When it was taken, by the clock that dates files.
    timespec taken() const { return taken_; }
    /// Dates it earlier: what came since then may not be in it yet.
    void dateBack(Date moment);

   private:
    friend ScreenshotList;
    timespec taken_{};
    std::vector<std::shared_ptr<Block>> blocks_;
    size_t size_ = 0;
  };

  ScreenshotList() = default;
  explicit ScreenshotList(std::vector<ScreenshotItem> newestFirst);

  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const ScreenshotItem& operator[](size_t index) const;
  std::optional<size_t> indexOf(const UUID& id) const;
  const ScreenshotItem* find(const UUID& id) const;
  template <typename Visit>
  void forEach(Visit visit) const {
    for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
      for (auto record = (*block)->rbegin(); record != (*block)->rend(); ++record) visit(std::as_const(**record));
    }
  }
  Snapshot snapshot() const;

  void insertNewest(ScreenshotItem item);
  /// Changes the record at `index`; answers whether it became another value.
  bool update(size_t index, const std::function<void(ScreenshotItem&)>& change);
  /// Removes those records and gives the indices that they had, ascending.
  std::vector<size_t> remove(const UUIDSet& ids);

 private:
  struct Place {
    size_t block;
    size_t row;
  };
  Place placeOf(size_t position) const;
  Block& ownBlock(size_t index);
  void add(Record record);
  void countStarts();

  // Oldest first, so that an arrival moves nothing and keeps `positions_` true.
  std::vector<std::shared_ptr<Block>> blocks_;
  std::vector<size_t> starts_;  ///< of each block the position of its first record
  size_t size_ = 0;
  mutable UUIDMap<size_t> positions_;
  mutable bool positionsAreStale_ = true;
};

}  // namespace quillmere
