#include "foundation/FileStatus.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

#include "foundation/SystemFiles.h"

namespace quillmere {
namespace {

using SystemFiles::LastLink;

/// Room for a reader that wants a few bytes behind the text, so that a large file is not copied for them.
constexpr size_t kSpareBytes = 32;

EntryKind entryKind(unsigned char type) {
  if (type == DT_REG) return EntryKind::regular;
  return type == DT_UNKNOWN ? EntryKind::unknown : EntryKind::notRegular;
}

}  // namespace

std::optional<FileStatus> fileStatus(const FileURL& url) {
  if (url.isEmpty()) return std::nullopt;
  return SystemFiles::look(AT_FDCWD, url.c_str(), LastLink::seen);
}

std::optional<FileStatus> fileStatus(int folder, const char* name) {
  return SystemFiles::look(folder, name, LastLink::seen);
}

bool fileExists(const FileURL& url) {
  return !url.isEmpty() && SystemFiles::look(AT_FDCWD, url.c_str(), LastLink::followed).has_value();
}

bool isAbsent(const FileURL& url) {
  return !fileExists(url) && (url.isEmpty() || errno == ENOENT || errno == ENOTDIR);
}

bool isReadableDirectory(const FileURL& url) {
  if (url.isEmpty()) return false;
  const auto status = SystemFiles::look(AT_FDCWD, url.c_str(), LastLink::followed);
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

namespace {

std::optional<std::string> readWhole(const FileURL& url, int64_t limit, int flags) {
  // Not blocking: a named pipe in the file's place must not hold the program.
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags);
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

}  // namespace

std::optional<std::string> readFile(const FileURL& url, int64_t limit) {
  return readWhole(url, limit, 0);
}

std::optional<std::string> readFileItself(const FileURL& url, int64_t limit) {
  return readWhole(url, limit, O_NOFOLLOW);
}

}  // namespace quillmere
