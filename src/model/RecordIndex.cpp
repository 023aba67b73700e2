#include "model/RecordIndex.h"

namespace quillmere {
namespace {

bool isDirectlyIn(const std::string& folder, const std::string& path) {
  if (path.size() <= folder.size() + 1 || path[folder.size()] != '/' || !path.starts_with(folder)) return false;
  const std::string_view name = std::string_view(path).substr(folder.size() + 1);
  return name.find('/') == std::string_view::npos && name != "." && name != "..";
}

}  // namespace

WatchFolderPaths watchFolderPaths(const FileURL& folder) {
  const FileURL standardized = folder.standardized();
  return {standardized.path(), standardized.resolvingSymlinks().value_or(standardized).path()};
}

std::string pathKey(const FileURL& url, const std::optional<WatchFolderPaths>& watchFolder) {
  // Nearly all of them, and so without taking the path apart.
  if (watchFolder && isDirectlyIn(watchFolder->standardized, url.path())) {
    return watchFolder->canonical + url.path().substr(watchFolder->standardized.size());
  }
  const FileURL standardized = url.standardized();
  const FileURL parent = standardized.parent();
  if (watchFolder && parent.path() == watchFolder->standardized) {
    return watchFolder->canonical + "/" + standardized.lastPathComponent();
  }
  if (const auto resolved = standardized.resolvingSymlinks()) return resolved->path();
  const bool hasTwoComponents = parent.path() != "/" && !parent.isEmpty();
  if (hasTwoComponents) {
    if (const auto resolved = parent.resolvingSymlinks()) {
      return resolved->appending(standardized.lastPathComponent()).path();
    }
  }
  return standardized.path();
}

RecordIndex::RecordIndex(const ScreenshotList& items, const std::optional<WatchFolderPaths>& watchFolder) {
  paths_.reserve(items.size());
  keys_.reserve(items.size());
  inodes_.reserve(items.size());
  items.forEach([&](const ScreenshotItem& item) { add(item, watchFolder); });
}

void RecordIndex::add(const ScreenshotItem& item, const std::optional<WatchFolderPaths>& watchFolder) {
  const auto [entry, isNew] = paths_.try_emplace(pathKey(item.url, watchFolder), item.id);
  if (isNew) {
    keys_[item.id] = &entry->first;
  } else {
    shared_.insert(entry->first);
  }
  if (item.fileIdentity) inodes_[item.fileIdentity->file].push_back(item.id);
}

bool RecordIndex::remove(const ScreenshotItem& item) {
  if (!shared_.empty()) return false;
  if (const auto key = keys_.find(item.id); key != keys_.end()) {
    paths_.erase(*key->second);
    keys_.erase(key);
  }
  if (item.fileIdentity) {
    const auto ids = inodes_.find(item.fileIdentity->file);
    if (ids != inodes_.end() && std::erase(ids->second, item.id) > 0 && ids->second.empty()) inodes_.erase(ids);
  }
  return true;
}

std::optional<UUID> RecordIndex::atPath(const std::string& key) const {
  const auto found = paths_.find(key);
  return found == paths_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<UUID> RecordIndex::withFileNumber(uint64_t file) const {
  const auto found = inodes_.find(file);
  return found == inodes_.end() ? std::vector<UUID>() : found->second;
}

std::unordered_set<std::string> RecordIndex::paths() const {
  std::unordered_set<std::string> keys;
  keys.reserve(paths_.size());
  for (const auto& [key, id] : paths_) keys.insert(key);
  return keys;
}

}  // namespace quillmere
