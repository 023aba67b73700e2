#include "monitor/URLSet.h"

#include <algorithm>

namespace quillmere {

bool URLSet::operator==(const URLSet& other) const {
  return size() == other.size() && std::all_of(begin(), end(), [&](const FileURL& url) { return other.contains(url); });
}

std::optional<size_t> URLSet::indexOf(std::string_view path, size_t guess) const {
  if (guess < urls_.size() && urls_[guess].path() == path) return guess;
  const auto found = indices_.find(path);
  return found == indices_.end() ? std::nullopt : std::optional(found->second);
}

void URLSet::insert(const FileURL& url) {
  if (contains(url)) return;
  urls_.push_back(url);
  indices_.emplace(urls_.back().path(), urls_.size() - 1);
}

void URLSet::erase(const FileURL& url) {
  const auto found = indices_.find(url.path());
  if (found == indices_.end()) return;
  const size_t index = found->second;
  indices_.erase(found);
  if (index + 1 < urls_.size()) {
    indices_.erase(urls_.back().path());
    urls_[index] = std::move(urls_.back());
    indices_.emplace(urls_[index].path(), index);
  }
  urls_.pop_back();
}

}  // namespace quillmere
