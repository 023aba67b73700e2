#include "platform/linux/files/MoveAcrossDisks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int get() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  /// A delayed write may fail as late as here.
  bool close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

/// What a disk cannot keep is not worth losing the move for.
void copyTags(int from, int to) {
  const ssize_t length = ::flistxattr(from, nullptr, 0);
  if (length <= 0) return;
  std::string names(static_cast<size_t>(length), '\0');
  if (::flistxattr(from, names.data(), names.size()) != length) return;
  for (size_t at = 0; at < names.size(); at += std::char_traits<char>::length(&names[at]) + 1) {
    const char* name = &names[at];
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    if (size < 0) continue;
    std::string value(static_cast<size_t>(size), '\0');
    if (::fgetxattr(from, name, value.data(), value.size()) != size) continue;
    ::fsetxattr(to, name, value.data(), value.size(), 0);
  }
}

bool isUnchanged(const struct stat& before, const FileURL& url) {
  struct stat now {};
  return ::lstat(url.c_str(), &now) == 0 && now.st_dev == before.st_dev && now.st_ino == before.st_ino &&
         now.st_size == before.st_size && now.st_mtim.tv_sec == before.st_mtim.tv_sec &&
         now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

/// Whether an open file still has a name somewhere; nullopt where the disk does not say.
std::optional<bool> hasName(const Descriptor& file) {
  struct statx status {};
  if (::statx(file.get(), "", AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, STATX_NLINK, &status) != 0) return std::nullopt;
  return status.stx_nlink > 0;
}

/// A copy in a folder, with no name of its own until it is whole: one that is given up, or that a killed program
/// leaves, is nowhere. Where a file system cannot make such files, the copy has a hidden name meanwhile.
class NamelessCopy {
 public:
  explicit NamelessCopy(const FileURL& folder) : file_(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600)) {
    if (file_.isOpen()) return;
    removeLeft(folder);
    hidden_ = folder.appending(".quillmere-XXXXXX").path();
    file_ = Descriptor(::mkostemp(hidden_.data(), O_CLOEXEC));
    const int error = errno;
    ::flock(file_.get(), LOCK_EX | LOCK_NB);
    errno = error;
  }
  NamelessCopy(const NamelessCopy&) = delete;
  NamelessCopy& operator=(const NamelessCopy&) = delete;
  ~NamelessCopy() {
    if (!hidden_.empty()) ::unlink(hidden_.c_str());
  }

  Descriptor& file() { return file_; }
  /// Gives 0 or the error number.
  int name(const FileURL& to) {
    if (!hidden_.empty()) {
      // A delayed write may fail as late as at closing.
      if (!file_.close()) return errno;
      const int error = renameWithoutReplacing(FileURL::fromPath(hidden_), to);
      if (error == 0) hidden_.clear();
      return error;
    }
    const std::string open = "/proc/self/fd/" + std::to_string(file_.get());
    if (::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) != 0) return errno;
    return 0;
  }

 private:
  static constexpr std::string_view kHidden = ".quillmere-";
  /// What a killed program left: nobody holds its lock any more.
  static void removeLeft(const FileURL& folder) {
    std::vector<std::string> left;
    listDirectory(folder, [&](int, const char* name, EntryKind) {
      const std::string_view view(name);
      if (view.starts_with(kHidden) && view.size() == kHidden.size() + 6) left.emplace_back(name);
    });
    for (const std::string& name : left) {
      const FileURL url = folder.appending(name);
      const Descriptor file(::open(url.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
      struct stat status {};
      const bool isOurs =
          file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
      if (isOurs && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlink(url.c_str());
    }
  }

  std::string hidden_;  // empty where the copy has no name
  Descriptor file_;
};

/// Fills the open copy. Gives 0 or the error number.
int copyWhole(const Descriptor& source, const struct stat& status, const Descriptor& copy) {
  errno = 0;
  if (!copyBytes(source.get(), 0, status.st_size, copy.get())) return errno != 0 ? errno : EIO;
  copyTags(source.get(), copy.get());
  ::fchmod(copy.get(), status.st_mode & 07777);
  const timespec dates[2] = {status.st_atim, status.st_mtim};
  ::futimens(copy.get(), dates);
  return ::fsync(copy.get()) == 0 ? 0 : errno;
}

/// Gives 0 or the error number.
int copyWithoutReplacing(const Descriptor& source, const struct stat& status, const FileURL& from, const FileURL& to) {
  NamelessCopy copy(to.parent());
  if (!copy.file().isOpen()) return errno;
  if (const int error = copyWhole(source, status, copy.file())) return error;
  return isUnchanged(status, from) ? copy.name(to) : EBUSY;
}

}  // namespace

int renameWithoutReplacing(const FileURL& from, const FileURL& to) {
  const auto moveUnlessTaken = [&] {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  };
  if (TEMP_FAILURE_RETRY(moveUnlessTaken()) == 0) return 0;
  if (errno != EINVAL) return errno;
  // A file system without that promise: a second link takes the name only if it is free.
  if (TEMP_FAILURE_RETRY(::link(from.c_str(), to.c_str())) == 0) {
    if (TEMP_FAILURE_RETRY(::unlink(from.c_str())) == 0) return 0;
    const int error = errno;
    ::unlink(to.c_str());
    return error;
  }
  if (errno == EEXIST) return EEXIST;
  // Nor with links: look first. A look that was refused does not say that the name is free.
  if (fileStatus(to)) return EEXIST;
  if (errno != ENOENT) return errno;
  return TEMP_FAILURE_RETRY(::rename(from.c_str(), to.c_str())) == 0 ? 0 : errno;
}

int moveAcrossDisks(const FileURL& from, const FileURL& to) {
  const Descriptor source(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!source.isOpen()) return errno;
  struct stat status {};
  if (::fstat(source.get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EXDEV;
  if (fileStatus(to)) return EEXIST;

  const int error = copyWithoutReplacing(source, status, from, to);
  if (error != 0) return error;
  // The copy's name is safe before the original goes. That may take seconds, in which someone may save the original or
  // take it away: the copy is one too many only where the original is known to be.
  flushFolder(to.parent());
  int failure = EBUSY;
  if (isUnchanged(status, from)) {
    if (::unlink(from.c_str()) == 0) return 0;
    failure = errno;
  }
  const auto isThere = hasName(source);
  if (isThere && !*isThere) return 0;
  if (isThere || isUnchanged(status, from)) ::unlink(to.c_str());
  return failure;
}

}  // namespace quillmere
