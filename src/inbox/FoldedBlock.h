#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "foundation/TextFolding.h"
#include "foundation/TextSearch.h"
#include "inbox/SearchedTexts.h"
#include "records/UUID.h"

namespace quillmere {

/// What is sought, for one thread: it makes the slow search when it is first needed.
class SoughtText {
 public:
  SoughtText(const ByteSearch& bytes, SearchCollator collator, QString text)
      : bytes_(bytes), collator_(std::move(collator)), text_(std::move(text)) {}
  const ByteSearch& bytes() const { return bytes_; }
  bool isIn(const SearchedTexts& texts);

 private:
  const ByteSearch& bytes_;
  SearchCollator collator_;
  QString text_;
  std::optional<TextSearch> slow_;
};

/// The folded texts of some records, one behind the other, so that a search streams through memory. Never changed once
/// it is made; any thread may search it.
///
/// A record takes 32 bytes beside its folded texts, each with a byte behind it. Where some of these are doubtful it
/// takes one bit more a byte and shares the record's own texts. Of a record with a text of more than `kMostBytes`
/// nothing is kept but those: it is searched the slow way.
class FoldedBlock {
 public:
  static constexpr size_t kMostBytes = 64 * 1024;

  struct Record {
    uint32_t number = 0;  ///< greater for newer ones
    uint32_t version = 0;
    UUID id;
    SearchedTexts texts;
  };
  struct Entry {
    UUID id;
    uint32_t number = 0;
    uint32_t version = 0;
    uint32_t begin = 0;  ///< in the bytes of the block
    int32_t special = -1;
  };
  /// By entry.
  using Dead = std::vector<bool>;
  /// A record in whose bytes the text stands, or that is only searched the slow way. If it is no hit, a longer text may
  /// yet be in it.
  struct Candidate {
    uint32_t entry = 0;
    uint32_t place = 0;  ///< the first in the bytes of the block
    bool isHit = false;
  };

  FoldedBlock() = default;
  /// Those of `before` that are not dead, and the records.
  FoldedBlock(const TextFolding& folding, const FoldedBlock& before, const Dead& dead,
              const std::vector<Record>& records);

  const std::vector<Entry>& entries() const { return entries_; }
  const std::string& bytes() const { return bytes_; }

  size_t memory() const;

  /// In order, but for those that are only searched the slow way.
  std::vector<Candidate> find(SoughtText& sought, const Dead& dead) const;
  /// Among these, which a text gave that stands in the sought one, `lead` bytes from its beginning.
  std::vector<Candidate> find(SoughtText& sought, const std::vector<Candidate>& among, size_t lead) const;

 private:
  /// What a record needs that bytes don't tell.
  struct Special {
    SearchedTexts texts;
    std::vector<bool> doubts;  ///< of the record's bytes
    bool isFolded = true;
  };

  void add(const TextFolding& folding, const Record& record);
  void copy(const FoldedBlock& other, size_t entry);
  size_t end(size_t entry) const { return entry + 1 < entries_.size() ? entries_[entry + 1].begin : bytes_.size(); }
  bool isFolded(const Entry& entry) const {
    return entry.special < 0 || specials_[static_cast<size_t>(entry.special)].isFolded;
  }
  bool isHit(SoughtText& sought, size_t entry) const;

  std::string bytes_;
  std::vector<Entry> entries_;
  std::vector<Special> specials_;
  std::vector<uint32_t> unfolded_;
};

}  // namespace quillmere
