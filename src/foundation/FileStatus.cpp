#include "foundation/FileStatus.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace quillmere {
namespace {

/// Room for a reader that wants a few bytes behind the text, so that a large file is not copied for them.
constexpr size_t kSpareBytes = 32;

FileStatus::Kind kindOf(uint16_t mode) {
  if (S_ISREG(mode)) return FileStatus::Kind::regular;
  if (S_ISDIR(mode)) return FileStatus::Kind::directory;
  if (S_ISLNK(mode)) return FileStatus::Kind::symbolicLink;
  return FileStatus::Kind::other;
}

EntryKind entryKind(unsigned char type) {
  if (type == DT_REG) return EntryKind::regular;
  return type == DT_UNKNOWN ? EntryKind::unknown : EntryKind::notRegular;
}

std::optional<FileStatus> look(int folder, const char* path, int flags) {
  struct statx found {};
  constexpr unsigned kMask = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_INO | STATX_BTIME;
  if (::statx(folder, path, flags | AT_NO_AUTOMOUNT, kMask, &found) != 0) return std::nullopt;

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

}  // namespace

std::optional<FileStatus> fileStatus(const FileURL& url) {
  if (url.isEmpty()) return std::nullopt;
  return look(AT_FDCWD, url.c_str(), AT_SYMLINK_NOFOLLOW);
}

std::optional<FileStatus> fileStatus(int folder, const char* name) {
  return look(folder, name, AT_SYMLINK_NOFOLLOW);
}

bool fileExists(const FileURL& url) {
  return !url.isEmpty() && look(AT_FDCWD, url.c_str(), 0).has_value();
}

bool isAbsent(const FileURL& url) {
  return !fileExists(url) && (url.isEmpty() || errno == ENOENT || errno == ENOTDIR);
}

bool isReadableDirectory(const FileURL& url) {
  if (url.isEmpty()) return false;
  const auto status = look(AT_FDCWD, url.c_str(), 0);
  return status && status->kind == FileStatus::Kind::directory && ::access(url.c_str(), R_OK) == 0;
}

bool listDirectory(const FileURL& folder, const std::function<void(int, const char*, EntryKind)>& visit) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return false;
  DIR* stream = ::fdopendir(descriptor);
  if (!stream) {
    ::close(descriptor);
    return false;
  }
  errno = 0;
  while (const dirent* entry = ::readdir(stream)) {
    const char* name = entry->d_name;
    const bool isSelfOrParent = name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
    if (!isSelfOrParent) visit(descriptor, name, entryKind(entry->d_type));
    errno = 0;
  }
  const bool complete = errno == 0;
  ::closedir(stream);
  return complete;
}

std::optional<std::string> readFile(const FileURL& url, int64_t limit) {
  // Not blocking: a named pipe in the file's place must not hold the program.
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::nullopt;
  struct stat status {};
  std::optional<std::string> result;
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= limit) {
    std::string bytes;
    bytes.reserve(static_cast<size_t>(status.st_size) + kSpareBytes);
    bytes.resize(static_cast<size_t>(status.st_size));
    size_t filled = 0;
    while (filled < bytes.size()) {
      const ssize_t count = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      filled += static_cast<size_t>(count);
    }
    if (filled == bytes.size()) result = std::move(bytes);
  }
  ::close(descriptor);
  return result;
}

}  // namespace quillmere
