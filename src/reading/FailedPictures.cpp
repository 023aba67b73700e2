#include "reading/FailedPictures.h"

#include <algorithm>

namespace quillmere {
namespace {

bool isSame(const FileStatus& a, const FileStatus& b) {
  return a.inode == b.inode && a.deviceMajor == b.deviceMajor && a.deviceMinor == b.deviceMinor && a.size == b.size &&
         a.modified == b.modified;
}

}  // namespace

std::optional<PictureError> FailedPictures::find(const FileURL& url) {
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(failures_.begin(), failures_.end(), [&](const Failure& one) { return one.url == url; });
  if (found == failures_.end()) return std::nullopt;
  const auto now = fileStatus(url);
  if (now && isSame(*now, found->seen)) return found->error;
  failures_.erase(found);
  return std::nullopt;
}

void FailedPictures::keep(const FileURL& url, const std::optional<FileStatus>& seen, PictureError error) {
  if (!seen || error == PictureError::unreadable) return;
  const std::lock_guard lock(mutex_);
  failures_.remove_if([&](const Failure& one) { return one.url == url; });
  failures_.push_front({url, *seen, error});
  if (failures_.size() > kMost) failures_.pop_back();
}

}  // namespace quillmere
