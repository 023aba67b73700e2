#include "model/FolderAccess.h"

#include <utility>

namespace quillmere {

FolderAccess::~FolderAccess() {
  retireFolder();
  endRetired();
  for (const auto& [id, url] : items_) scope_.stop(url);
}

bool FolderAccess::openFolder(const FileURL& folder) {
  if (!scope_.start(folder)) return false;
  folder_ = folder;
  return true;
}

void FolderAccess::retireFolder() {
  if (folder_) retired_.push_back(*std::exchange(folder_, std::nullopt));
}

void FolderAccess::endRetired() {
  for (const FileURL& folder : std::exchange(retired_, {})) scope_.stop(folder);
}

std::optional<FileURL> FolderAccess::item(const UUID& id) const {
  const auto found = items_.find(id);
  return found == items_.end() ? std::nullopt : std::optional(found->second);
}

void FolderAccess::openItem(const UUID& id, const FileURL& url) {
  if (!scope_.start(url)) return;
  closeItem(id);
  items_[id] = url;
}

void FolderAccess::closeItem(const UUID& id) {
  const auto found = items_.find(id);
  if (found == items_.end()) return;
  scope_.stop(found->second);
  items_.erase(found);
}

}  // namespace quillmere
