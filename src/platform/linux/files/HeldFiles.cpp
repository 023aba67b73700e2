#include "platform/linux/files/HeldFiles.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <string>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

std::optional<FileURL> placeOf(int descriptor) {
  struct stat status {};
  // A file without a name is deleted, and only kept by us.
  if (::fstat(descriptor, &status) != 0 || status.st_nlink == 0) return std::nullopt;
  std::array<char, PATH_MAX> path{};
  const ssize_t length = ::readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), path.data(), path.size());
  if (length <= 0) return std::nullopt;
  return FileURL::fromPath(std::string_view(path.data(), static_cast<size_t>(length)));
}

/// The rest of the program needs descriptors too.
size_t mostToHold() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return HeldFiles::kMost;
  return std::min<size_t>(HeldFiles::kMost, limit.rlim_cur / 4);
}

}  // namespace

HeldFiles::~HeldFiles() {
  for (const auto& [file, held] : files_) ::close(held.descriptor);
}

bool HeldFiles::canHoldIn(const FileURL& folder) const {
  const auto mount = mounts_.covering(folder);
  if (!mount) return false;
  const char* home = std::getenv("HOME");
  for (const char* fixed : {"/", home ? home : "/"}) {
    const auto base = mounts_.covering(FileURL::fromPath(std::string_view(fixed)));
    if (base && base->path == mount->path) return true;
  }
  return false;
}

void HeldFiles::hold(const std::vector<FileURL>& files) {
  std::map<FileURL, Held> next;
  std::map<FileURL, bool> folders;
  const size_t most = mostToHold();
  const std::lock_guard lock(mutex_);
  for (const FileURL& file : files) {
    if (next.size() >= most) break;
    const auto now = fileStatus(file);
    if (const auto kept = files_.find(file); kept != files_.end() && (!now || now->inode == kept->second.inode)) {
      next.insert(files_.extract(kept));
      continue;
    }
    // Asked once a folder: each look reads the table of mounts.
    const auto [known, isNew] = folders.try_emplace(file.parent());
    if (isNew) known->second = canHoldIn(known->first);
    if (!known->second) continue;
    const int descriptor = ::open(file.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) continue;
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
      next[file] = {descriptor, status.st_ino};
    } else {
      ::close(descriptor);
    }
  }
  files_.swap(next);
  for (const auto& [file, held] : next) ::close(held.descriptor);
}

std::optional<FileURL> HeldFiles::place(uint64_t inode) const {
  const std::lock_guard lock(mutex_);
  for (const auto& [file, held] : files_) {
    if (held.inode != inode) continue;
    if (auto found = placeOf(held.descriptor)) return found;
  }
  return std::nullopt;
}

size_t HeldFiles::count() const {
  const std::lock_guard lock(mutex_);
  return files_.size();
}

}  // namespace quillmere
