#include "inbox/SearchRun.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace quillmere {

SearchRun::SearchRun(std::vector<Part> parts, const TextFolding& folding, const QString& sought)
    : parts_(std::move(parts)),
      collator_(folding.collator()),
      text_(sought),
      bytes_(folding.fold(sought).bytes, parts_.empty() ? std::string_view() : parts_.front().block->bytes()),
      candidates_(parts_.size()) {
  if (parts_.empty()) isFinished_ = true;
}

void SearchRun::narrow(std::shared_ptr<const SearchRun> shorter) {
  // The bytes tell, not the letters: where "ch" is a letter, texts with "ch" need not have a "c".
  if (shorter->soughtBytes().empty()) return;
  const size_t lead = soughtBytes().find(shorter->soughtBytes());
  if (lead == std::string::npos) return;
  shorter_ = std::move(shorter);
  lead_ = lead;
}

void SearchRun::help() {
  SoughtText sought(bytes_, collator_, text_);
  for (size_t part = next_++; part < parts_.size(); part = next_++) {
    if (!isCancelled_) search(part, sought);
    if (++searched_ < parts_.size()) continue;
    if (!isCancelled_) gather();
    shorter_.reset();
    isFinished_ = true;
  }
}

void SearchRun::search(size_t part, SoughtText& sought) {
  const FoldedBlock& block = *parts_[part].block;
  static const FoldedBlock::Dead kNone;
  candidates_[part] = shorter_ ? block.find(sought, shorter_->candidates_[part], lead_)
                               : block.find(sought, parts_[part].dead ? *parts_[part].dead : kNone);
}

void SearchRun::gather() {
  size_t count = 0;
  for (const auto& candidates : candidates_) count += candidates.size();
  hits_.numbers.reserve(count);
  hits_.ids.reserve(count);
  for (size_t part = parts_.size(); part-- > 0;) {
    const auto& entries = parts_[part].block->entries();
    for (auto candidate = candidates_[part].rbegin(); candidate != candidates_[part].rend(); ++candidate) {
      if (!candidate->isHit) continue;
      hits_.numbers.push_back(entries[candidate->entry].number);
      hits_.ids.push_back(entries[candidate->entry].id);
    }
  }
  // Records that changed stand behind older ones.
  if (!std::is_sorted(hits_.numbers.begin(), hits_.numbers.end(), std::greater())) sortHits();
}

void SearchRun::sortHits() {
  std::vector<std::pair<uint32_t, UUID>> found;
  for (size_t i = 0; i < hits_.numbers.size(); ++i) found.emplace_back(hits_.numbers[i], hits_.ids[i]);
  std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) { return one.first > other.first; });
  for (size_t i = 0; i < found.size(); ++i) std::tie(hits_.numbers[i], hits_.ids[i]) = found[i];
}

}  // namespace quillmere
