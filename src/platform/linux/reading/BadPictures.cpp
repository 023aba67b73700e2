#include "platform/linux/reading/BadPictures.h"

#include <algorithm>

namespace quillmere {

BadPictures::File BadPictures::fileOf(const struct stat& status) {
  return {status.st_dev,          status.st_ino,         status.st_size,        status.st_mtim.tv_sec,
          status.st_mtim.tv_nsec, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

bool BadPictures::isBad(const File& file) const {
  const std::lock_guard lock(mutex_);
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& entry) { return entry.times >= kEnough && entry.file == file; });
}

void BadPictures::note(const File& file) {
  const std::lock_guard lock(mutex_);
  const auto known =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.file == file; });
  const auto entry = known != entries_.end() ? known : entries_.insert(entries_.begin(), Entry{file});
  ++entry->times;
  entries_.splice(entries_.begin(), entries_, entry);
  if (entries_.size() > kMost) entries_.pop_back();
}

}  // namespace quillmere
