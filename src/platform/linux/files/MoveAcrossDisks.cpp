#include "platform/linux/files/MoveAcrossDisks.h"

#include <fcntl.h>
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

constexpr std::string_view kCopyPrefix = ".quillmere-moving-";

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int get() const { return number_; }
  void set(int number) { number_ = number; }
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

/// Whether both are regular files, not one file under two names, with the same date of writing and the same bytes.
bool isWholeCopy(const FileURL& from, const FileURL& to) {
  struct stat one {
  }, other{};
  if (::lstat(from.c_str(), &one) != 0 || ::lstat(to.c_str(), &other) != 0) return false;
  const bool isAlike = S_ISREG(one.st_mode) && S_ISREG(other.st_mode) && one.st_size == other.st_size &&
                       one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
  if (!isAlike || (one.st_dev == other.st_dev && one.st_ino == other.st_ino)) return false;
  const auto bytes = readFileItself(from, one.st_size);
  return bytes && bytes == readFileItself(to, one.st_size);
}

/// Whether an open file still has a name somewhere; nullopt where the disk does not say.
std::optional<bool> hasName(const Descriptor& file) {
  struct statx status {};
  if (::statx(file.get(), "", AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, STATX_NLINK, &status) != 0) return std::nullopt;
  return status.stx_nlink > 0;
}

/// A copy in the making. Where the file system can, it has no name until it is whole: then nothing is left of it when
/// the program is killed. Elsewhere it has a hidden one, which `finishMove` knows.
class Copy {
 public:
  explicit Copy(const FileURL& folder)
      : file_(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
    if (file_.isOpen()) return;
    temporary_ = folder.appending(std::string(kCopyPrefix).append("XXXXXX")).path();
    file_.set(::mkostemp(temporary_.data(), O_CLOEXEC));
    if (!file_.isOpen()) temporary_.clear();
  }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  ~Copy() {
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
  }
  int get() const { return file_.get(); }
  bool isOpen() const { return file_.isOpen(); }
  /// Gives 0 or the error number; the copy is gone then.
  int takeName(const FileURL& name) {
    if (!temporary_.empty()) {
      if (!file_.close()) return errno;
      const int error = renameWithoutReplacing(FileURL::fromPath(temporary_), name);
      if (error == 0) temporary_.clear();
      return error;
    }
    const std::string open = "/proc/self/fd/" + std::to_string(file_.get());
    if (::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) return errno;
    if (file_.close()) return 0;
    const int error = errno;
    ::unlink(name.c_str());
    return error;
  }

 private:
  Descriptor file_;
  std::string temporary_;  ///< its path, if it has a name
};

/// Fills the open copy. Gives 0 or the error number.
int copyWhole(const Descriptor& source, const struct stat& status, const Copy& copy) {
  errno = 0;
  if (!copyBytes(source.get(), 0, status.st_size, copy.get())) return errno != 0 ? errno : EIO;
  copyTags(source.get(), copy.get());
  ::fchmod(copy.get(), status.st_mode & 07777);
  const timespec dates[2] = {status.st_atim, status.st_mtim};
  ::futimens(copy.get(), dates);
  return ::fsync(copy.get()) == 0 ? 0 : errno;
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

  Copy copy(to.parent());
  if (!copy.isOpen()) return errno;
  int error = copyWhole(source, status, copy);
  if (error == 0 && !isUnchanged(status, from)) error = EBUSY;
  if (error == 0) error = copy.takeName(to);
  if (error != 0) return error;
  // The copy's name is safe before the original goes. That may take seconds, in which someone may save the original or
  // take it away: the copy is one too many only where the original is known to be.
  flushFolder(to.parent());
  if (isUnchanged(status, from)) {
    if (::unlink(from.c_str()) == 0) return 0;
    error = errno;
  } else {
    error = EBUSY;
  }
  const auto isThere = hasName(source);
  if (isThere && !*isThere) return 0;
  if (isThere || isUnchanged(status, from)) ::unlink(to.c_str());
  return error;
}

void finishMove(const FileURL& from, const FileURL& to) {
  const FileURL folder = to.parent();
  std::vector<FileURL> remains;
  listDirectory(folder, [&](int, const char* name, EntryKind kind) {
    const bool isCopy = kind != EntryKind::notRegular && std::string_view(name).starts_with(kCopyPrefix);
    if (isCopy) remains.push_back(folder.appending(name));
  });
  for (const FileURL& one : remains) ::unlink(one.c_str());
  struct stat original {};
  if (::lstat(from.c_str(), &original) != 0 || !isWholeCopy(from, to)) return;
  flushFolder(folder);
  if (isUnchanged(original, from)) ::unlink(from.c_str());
}

}  // namespace quillmere
