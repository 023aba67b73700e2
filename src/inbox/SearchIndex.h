#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "inbox/SearchRun.h"
#include "model/AppModel.h"

namespace quillmere {

/// Finds the records that contain a text, at each key that is typed: their texts are folded once, off the main thread,
/// and only those that change are folded anew. Main thread only, which never waits for it.
///
/// A record with a text of 1,500 Latin letters takes about 1,630 bytes: one for each letter of the text and of its
/// file's name, and some 90 for its place. No record takes more than FoldedBlock::kMostBytes beside that. Nothing is
/// folded or kept before it is first needed.
class SearchIndex {
 public:
  SearchIndex(AppModel& model, Executor& executor);
  /// Running searches end with nothing.
  ~SearchIndex();
  SearchIndex(const SearchIndex&) = delete;
  SearchIndex& operator=(const SearchIndex&) = delete;

  /// A search will come: begins to fold. `find` does so by itself.
  void prepare();
  /// No search will come: lets go of everything. Running searches end with nothing.
  void release();

  /// The records that contain `text`, in the model's order as it is when the task ends; records that came or changed
  /// meanwhile are judged as they are then. Nothing when it was cancelled. An empty text finds all.
  ///
  /// White space at the ends of the text is no part of it. A search that is begun while records are yet to be folded
  /// waits for them. Of searches that run at once, each answers for itself.
  Task<std::optional<std::vector<UUID>>> find(QString text);
  /// The same rule for one record, at once.
  bool contains(const ScreenshotItem& item, const QString& text) const;

  /// Bytes that are kept of the records.
  size_t memory() const;

 private:
  /// A record, in the order of their numbers: oldest first, so that an arrival moves nothing.
  struct Slot {
    static constexpr uint32_t kNone = UINT32_MAX;
    UUID id;
    size_t texts = 0;  ///< a hash of them, by which a change of something else is told from one of them
    uint32_t number = 0;
    uint32_t version = 0;
    uint32_t part = kNone;  ///< where it stands folded
    uint32_t entry = 0;
    bool isWaiting = false;  ///< to be folded
  };
  struct FoldJob {
    std::shared_ptr<const TextFolding> folding;
    uint32_t part = Slot::kNone;  ///< the one that is to be replaced
    SearchRun::Part before;
    std::vector<FoldedBlock::Record> records;
  };
  /// Numbers of records that came, changed or went since a search began.
  using Touched = std::vector<uint32_t>;

  static Task<> fold(Weak<SearchIndex> self);
  static Task<std::optional<std::vector<UUID>>> search(Weak<SearchIndex> self, QString text);
  static Task<> help(Executor& executor, std::shared_ptr<SearchRun> run);

  void follow(const ModelChange& change);
  /// Whether the slots are the model's rows again.
  bool followRows(const ModelChange& change);
  void change(Slot& slot);
  void remove(const std::vector<size_t>& rows);
  void begin();
  void letGo();

  Slot* slot(uint32_t number);
  Slot& slotOfRow(size_t row) { return slots_[slots_.size() - 1 - row]; }
  void addSlot(const UUID& id);
  void wait(Slot& slot);
  void kill(Slot& slot);
  void partsChanged();
  void touch(const Slot& slot);
  std::optional<FoldedBlock::Record> record(Slot& slot) const;

  void foldWaiting();
  FoldJob nextFoldJob();
  void put(const FoldJob& job, std::shared_ptr<const FoldedBlock> block);

  std::shared_ptr<SearchRun> makeRun(const QString& text) const;
  /// Empties it, and takes those records out of the hits; gives those that are still there as they are now.
  std::vector<FoldedBlock::Record> take(Touched& touched, SearchRun::Hits& hits);
  std::vector<UUID> everyRecord() const;

  AppModel& model_;
  Executor& executor_;
  Connection changes_;
  bool isPrepared_ = false;
  int releases_ = 0;
  int beginnings_ = 0;  // work of before the last finds out by it
  std::shared_ptr<const TextFolding> folding_;
  std::vector<Slot> slots_;
  uint32_t nextNumber_ = 0;
  std::deque<uint32_t> waiting_;        // some of them of records that are gone
  std::vector<SearchRun::Part> parts_;  // empty ones among them
  std::vector<uint32_t> sparse_;        // parts of which most entries are dead
  int64_t generation_ = 0;              // of what a search goes through
  Task<> foldTask_;
  std::vector<std::weak_ptr<Touched>> searches_;
  std::shared_ptr<const SearchRun> last_;  // that finished, of this generation
  mutable QString asked_;
  mutable std::unique_ptr<TextSearch> asking_;
  Lifetime lifetime_;
};

}  // namespace quillmere
