#include "platform/linux/thumbnails/OwnFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

#include "foundation/FileCopy.h"

namespace quillmere {
namespace {

constexpr mode_t kOwnersFile = 0600;
constexpr mode_t kOwnersFolder = 0700;

/// Closed with its scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (isOpen()) ::close(number_);
  }
  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  /// Servers tell only here that there was no room.
  bool close() {
    const int number = number_;
    number_ = -1;
    return ::close(number) == 0 || errno == EINTR;
  }

 private:
  int number_;
};

/// One name for each file, so that what a cut off write leaves is found again.
std::string unfinishedName(const FileURL& url) {
  return url.lastPathComponent() + ".quillmere";
}

bool readAll(int descriptor, std::string& bytes) {
  size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t count = TEMP_FAILURE_RETRY(::read(descriptor, bytes.data() + filled, bytes.size() - filled));
    if (count <= 0) return false;
    filled += static_cast<size_t>(count);
  }
  return true;
}

bool isOwn(const struct stat& status) {
  return status.st_uid == ::geteuid();
}

}  // namespace

std::optional<std::string> OwnFiles::read(const FileURL& url, int64_t limit) {
  // Not blocking: a named pipe must not hold the program.
  const Descriptor file(::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY));
  struct stat status {};
  if (!file.isOpen() || ::fstat(file.number(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode) || !isOwn(status) || status.st_size > limit) return std::nullopt;
  std::string bytes(static_cast<size_t>(status.st_size), '\0');
  if (!readAll(file.number(), bytes)) return std::nullopt;
  return bytes;
}

bool OwnFiles::write(const FileURL& url, std::string_view bytes) {
  const Descriptor folder(::open(url.parent().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  struct stat status {};
  if (!folder.isOpen() || ::fstat(folder.number(), &status) != 0 || !isOwn(status)) return false;
  const std::string unfinished = unfinishedName(url);
  ::unlinkat(folder.number(), unfinished.c_str(), 0);
  Descriptor file(
      ::openat(folder.number(), unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnersFile));
  if (!file.isOpen()) return false;
  const bool isWritten = writeAll(file.number(), bytes.data(), bytes.size());
  const bool isDone =
      file.close() && isWritten &&
      ::renameat(folder.number(), unfinished.c_str(), folder.number(), url.lastPathComponent().c_str()) == 0;
  if (!isDone) ::unlinkat(folder.number(), unfinished.c_str(), 0);
  return isDone;
}

void OwnFiles::remove(const FileURL& url) {
  ::unlink(url.c_str());
  OwnFiles::removeUnfinished(url);
}

void OwnFiles::removeUnfinished(const FileURL& url) {
  ::unlink(url.parent().appending(unfinishedName(url)).c_str());
}

void OwnFiles::makeFolder(const FileURL& url) {
  ::mkdir(url.c_str(), kOwnersFolder);
}

}  // namespace quillmere
