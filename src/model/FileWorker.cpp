#include "model/FileWorker.h"

#include <algorithm>

namespace quillmere {
namespace {

bool isAt(const FileClaim& claim, const FileURL& place) {
  return claim.places.contains(place) ||
         (claim.newName && claim.newName->folder == place.parent() && place.stem().starts_with(claim.newName->stem));
}

bool overlap(const FileClaim& a, const FileClaim& b) {
  return std::any_of(a.ids.begin(), a.ids.end(), [&](const UUID& id) { return b.ids.contains(id); }) ||
         std::any_of(a.places.begin(), a.places.end(), [&](const FileURL& place) { return b.places.contains(place); });
}

}  // namespace

FileWorker::FileWorker(Executor& executor, std::function<void()> ended)
    : executor_(executor), ended_(std::move(ended)) {}

FileWorker::Entry FileWorker::enter(FileClaim claim) {
  std::set<FileURL> places;
  for (const FileURL& place : claim.places) places.insert(place.standardized());
  claim.places = std::move(places);
  claims_.push_back({std::move(claim), std::nullopt});
  return Entry(*this, std::prev(claims_.end()));
}

bool FileWorker::isBusy(const UUID& id) const {
  return std::any_of(claims_.begin(), claims_.end(), [&](const Claim& claim) { return claim.wanted.ids.contains(id); });
}

bool FileWorker::concerns(const FileURL& url) const {
  const FileURL place = url.standardized();
  return std::any_of(claims_.begin(), claims_.end(), [&](const Claim& claim) { return isAt(claim.wanted, place); });
}

/// Whether nobody who came before wants any of it.
bool FileWorker::isFree(Claims::const_iterator claim) const {
  return std::none_of(claims_.begin(), claim,
                      [&](const Claim& earlier) { return overlap(earlier.wanted, claim->wanted); });
}

void FileWorker::release(Claims::iterator claim) {
  claims_.erase(claim);
  letIn();
  executor_.post([self = lifetime_.weak(this)] {
    if (self) self->ended_();
  });
}

/// In a turn of their own, so that nothing begins in the middle of the end of something else.
void FileWorker::letIn() {
  for (auto claim = claims_.begin(); claim != claims_.end(); ++claim) {
    if (!claim->waiting || !isFree(claim)) continue;
    const auto continuation = claim->waiting->continuation;
    *claim->waiting->hold = std::make_shared<Claimed>(lifetime_.weak(this), claim);
    claim->waiting.reset();
    executor_.post([continuation] { continuation->resume(); });
  }
}

}  // namespace quillmere
