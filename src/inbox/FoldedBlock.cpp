#include "inbox/FoldedBlock.h"

#include <algorithm>

namespace quillmere {
namespace {

struct FoldedTexts {
  std::string bytes;
  std::vector<bool> doubts;
};

/// None where that takes too many bytes.
std::optional<FoldedTexts> folded(const TextFolding& folding, const SearchedTexts& texts) {
  FoldedTexts all;
  if (!folding.collator()) return std::nullopt;
  for (const QByteArray& text : texts) {
    if (text.isEmpty()) continue;
    if (static_cast<size_t>(text.size()) > FoldedBlock::kMostBytes) return std::nullopt;
    const FoldedText one = folding.fold(QString::fromUtf8(text));
    if (!one.doubts.empty()) {
      all.doubts.resize(all.bytes.size());
      all.doubts.insert(all.doubts.end(), one.doubts.begin(), one.doubts.end());
    }
    all.bytes += one.bytes;
    all.bytes += '\0';
    if (all.bytes.size() > FoldedBlock::kMostBytes) return std::nullopt;
  }
  return all;
}

}  // namespace

bool SoughtText::isIn(const SearchedTexts& texts) {
  if (!slow_) slow_.emplace(collator_, text_);
  return quillmere::isIn(*slow_, texts);
}

FoldedBlock::FoldedBlock(const TextFolding& folding, const FoldedBlock& before, const Dead& dead,
                         const std::vector<Record>& records) {
  bytes_.reserve(before.bytes_.size());
  entries_.reserve(before.entries_.size() + records.size());
  for (size_t entry = 0; entry < before.entries_.size(); ++entry) {
    if (dead.empty() || !dead[entry]) copy(before, entry);
  }
  for (const Record& record : records) add(folding, record);
  bytes_.shrink_to_fit();
}

void FoldedBlock::add(const TextFolding& folding, const Record& record) {
  Entry entry{record.id, record.number, record.version, static_cast<uint32_t>(bytes_.size()), -1};
  auto texts = folded(folding, record.texts);
  if (!texts || !texts->doubts.empty()) {
    if (!texts) unfolded_.push_back(static_cast<uint32_t>(entries_.size()));
    entry.special = static_cast<int32_t>(specials_.size());
    specials_.push_back({record.texts, texts ? std::move(texts->doubts) : std::vector<bool>(), texts.has_value()});
  }
  if (texts) bytes_ += texts->bytes;
  entries_.push_back(entry);
}

void FoldedBlock::copy(const FoldedBlock& other, size_t entry) {
  Entry copied = other.entries_[entry];
  if (!other.isFolded(copied)) unfolded_.push_back(static_cast<uint32_t>(entries_.size()));
  if (copied.special >= 0) {
    specials_.push_back(other.specials_[static_cast<size_t>(copied.special)]);
    copied.special = static_cast<int32_t>(specials_.size()) - 1;
  }
  const size_t begin = copied.begin;
  copied.begin = static_cast<uint32_t>(bytes_.size());
  bytes_.append(other.bytes_, begin, other.end(entry) - begin);
  entries_.push_back(copied);
}

size_t FoldedBlock::memory() const {
  size_t bytes = sizeof *this + bytes_.capacity() + entries_.capacity() * sizeof(Entry) +
                 specials_.capacity() * sizeof(Special) + unfolded_.capacity() * sizeof(uint32_t);
  for (const Special& special : specials_) bytes += special.doubts.capacity() / 8;
  return bytes;
}

bool FoldedBlock::isHit(SoughtText& sought, size_t entry) const {
  const int32_t special = entries_[entry].special;
  if (special < 0) return true;
  const Special& more = specials_[static_cast<size_t>(special)];
  if (!more.isFolded) return sought.isIn(more.texts);
  const size_t begin = entries_[entry].begin;
  switch (quillmere::find(sought.bytes(), std::string_view(bytes_).substr(begin, end(entry) - begin), more.doubts)) {
    case Finding::none:
      return false;
    case Finding::certain:
      return true;
    case Finding::doubtful:
      return sought.isIn(more.texts);
  }
  return false;
}

std::vector<FoldedBlock::Candidate> FoldedBlock::find(SoughtText& sought, const Dead& dead) const {
  std::vector<Candidate> found;
  const auto isDead = [&](size_t entry) { return !dead.empty() && dead[entry]; };
  for (const uint32_t entry : unfolded_) {
    if (!isDead(entry)) found.push_back({entry, 0, isHit(sought, entry)});
  }
  if (sought.bytes().size() == 0) return found;
  size_t place = 0;
  size_t next = 0;
  while ((place = sought.bytes().find(bytes_, place)) != ByteSearch::kNotFound) {
    // The last that begins there or before.
    while (next < entries_.size() && entries_[next].begin <= place) ++next;
    const size_t entry = next - 1;
    if (found.empty()) found.reserve(entries_.size());
    if (!isDead(entry)) {
      found.push_back({static_cast<uint32_t>(entry), static_cast<uint32_t>(place), isHit(sought, entry)});
    }
    place = end(entry);
  }
  return found;
}

std::vector<FoldedBlock::Candidate> FoldedBlock::find(SoughtText& sought, const std::vector<Candidate>& among,
                                                      size_t lead) const {
  std::vector<Candidate> found;
  found.reserve(among.size());
  for (const Candidate& candidate : among) {
    const Entry& entry = entries_[candidate.entry];
    size_t place = 0;
    if (isFolded(entry)) {
      const size_t from = std::max<size_t>(entry.begin, candidate.place - std::min<size_t>(lead, candidate.place));
      place = sought.bytes().find(std::string_view(bytes_).substr(0, end(candidate.entry)), from);
      if (place == ByteSearch::kNotFound) continue;
    }
    found.push_back({candidate.entry, static_cast<uint32_t>(place), isHit(sought, candidate.entry)});
  }
  return found;
}

}  // namespace quillmere
