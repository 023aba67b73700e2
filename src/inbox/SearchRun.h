#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "inbox/FoldedBlock.h"

namespace quillmere {

/// One search through blocks, by as many threads as will help: each takes the next block that none has taken, and the
/// one that ends the last gathers what all have found.
class SearchRun {
 public:
  struct Part {
    std::shared_ptr<const FoldedBlock> block;
    std::shared_ptr<const FoldedBlock::Dead> dead;  ///< none where all live
  };
  /// Newest first.
  struct Hits {
    std::vector<uint32_t> numbers;
    std::vector<UUID> ids;
  };

  SearchRun(std::vector<Part> parts, const TextFolding& folding, const QString& sought);

  const std::string& soughtBytes() const { return bytes_.sought(); }
  /// Before it begins: searches only what `shorter`, which has finished with the same parts, found to be candidates.
  /// Does nothing where a hit of this text could be something else.
  void narrow(std::shared_ptr<const SearchRun> shorter);
  bool isNarrowed() const { return shorter_ != nullptr; }

  /// Any thread, several at once.
  void help();
  /// What is not searched yet is passed over. Any thread.
  void cancel() { isCancelled_ = true; }
  bool isFinished() const { return isFinished_; }
  size_t parts() const { return parts_.size(); }
  /// Once finished and not cancelled; takes it.
  Hits takeHits() { return std::move(hits_); }

 private:
  void search(size_t part, SoughtText& sought);
  void gather();
  void sortHits();

  std::vector<Part> parts_;
  SearchCollator collator_;
  QString text_;
  ByteSearch bytes_;
  std::shared_ptr<const SearchRun> shorter_;
  size_t lead_ = 0;                                              // of this text before the shorter one in it
  std::vector<std::vector<FoldedBlock::Candidate>> candidates_;  // by part
  Hits hits_;
  std::atomic<size_t> next_ = 0;
  std::atomic<size_t> searched_ = 0;
  std::atomic<bool> isCancelled_ = false;
  std::atomic<bool> isFinished_ = false;
};

}  // namespace quillmere
