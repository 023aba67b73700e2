#include "foundation/SystemFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace quillmere {
namespace {

FileStatus::Kind kindOf(uint16_t mode) {
  if (S_ISREG(mode)) return FileStatus::Kind::regular;
  if (S_ISDIR(mode)) return FileStatus::Kind::directory;
  if (S_ISLNK(mode)) return FileStatus::Kind::symbolicLink;
  return FileStatus::Kind::other;
}

}  // namespace

/// By `statx`: only that tells when a file was made.
std::optional<FileStatus> SystemFiles::look(int folder, const char* path, LastLink link) {
  struct statx found {};
  constexpr unsigned kMask = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_INO | STATX_BTIME;
  const int flags = AT_NO_AUTOMOUNT | (link == LastLink::seen ? AT_SYMLINK_NOFOLLOW : 0);
  if (::statx(folder, path, flags, kMask, &found) != 0) return std::nullopt;

  FileStatus status;
  status.kind = kindOf(found.stx_mode);
  status.size = static_cast<int64_t>(found.stx_size);
  status.modified = Date::fromUnix(found.stx_mtime.tv_sec, found.stx_mtime.tv_nsec);
  if (found.stx_mask & STATX_BTIME) {
    status.created = Date::fromUnix(found.stx_btime.tv_sec, found.stx_btime.tv_nsec);
  }
  status.inode = found.stx_ino;
  status.deviceMajor = found.stx_dev_major;
  status.deviceMinor = found.stx_dev_minor;
  return status;
}

int64_t SystemFiles::copyRange(int from, int64_t offset, int64_t length, int to) {
  off64_t position = offset;
  while (position - offset < length) {
    const auto rest = static_cast<size_t>(length - (position - offset));
    const ssize_t count = ::copy_file_range(from, &position, to, nullptr, rest, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
  }
  return position - offset;
}

}  // namespace quillmere
