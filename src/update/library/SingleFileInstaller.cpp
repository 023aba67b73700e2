#include "update/library/SingleFileInstaller.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdio>

#include "foundation/FileCopy.h"

namespace quillmere {
namespace {

/// A copy beside the file, gone again unless it took the file's name.
class CopyBeside {
 public:
  explicit CopyBeside(const FileURL& file) : place_(FileURL::fromPath(file.path() + ".updating")) {
    ::unlink(place_.c_str());  // of a run that was cut off
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    descriptor_ = static_cast<int>(TEMP_FAILURE_RETRY(::open(place_.c_str(), kFlags, 0600)));
  }
  CopyBeside(const CopyBeside&) = delete;
  CopyBeside& operator=(const CopyBeside&) = delete;
  ~CopyBeside() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (!isMoved_) ::unlink(place_.c_str());
  }
  int descriptor() const { return descriptor_; }
  /// What stands at its name is what was looked through.
  bool isAtItsPlace() const {
    struct stat open {};
    struct stat named {};
    return ::fstat(descriptor_, &open) == 0 && ::lstat(place_.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
  }
  bool moveTo(const FileURL& file) {
    isMoved_ = isAtItsPlace() && std::rename(place_.c_str(), file.c_str()) == 0;
    return isMoved_;
  }

 private:
  FileURL place_;
  int descriptor_ = -1;
  bool isMoved_ = false;
};

bool isRegular(const FileURL& file, struct stat& status) {
  return !file.isEmpty() && ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

FileURL singleFileOf(const FileURL& program, const QByteArray& bundle, const QByteArray& mountedAt) {
  const FileURL file = FileURL::fromPath(bundle.toStdString());
  const bool runsFromIt =
      mountedAt.startsWith('/') && QByteArray::fromStdString(program.path()).startsWith(mountedAt + '/');
  struct stat status {};
  if (!runsFromIt || !isRegular(file, status) || status.st_uid != ::geteuid()) return {};
  return (status.st_mode & S_IXUSR) != 0 ? file : FileURL();
}

std::optional<UpdateFailure> SingleFileInstaller::obstacle() const {
  struct stat status {};
  if (!isRegular(file_, status)) return UpdateFailure::notSingleFile;
  return ::access(file_.parent().c_str(), W_OK) == 0 ? std::nullopt : std::optional(UpdateFailure::notReplaceable);
}

std::optional<UpdateFailure> SingleFileInstaller::replace(const FileURL& file, const PackageFile& package) {
  struct stat before {};
  if (!isRegular(file, before)) return UpdateFailure::notSingleFile;
  CopyBeside copy(file);
  if (copy.descriptor() < 0) return UpdateFailure::notReplaceable;
  if (!copyBytes(package.descriptor(), 0, package.seal().size, copy.descriptor())) return UpdateFailure::notStored;
  if (!package.seal().isUnbroken(copy.descriptor())) return UpdateFailure::packageNotSigned;
  // No more than anyone could do with the old one, and nothing that runs as someone else.
  constexpr mode_t kPermissions = 0777;
  if (::fchmod(copy.descriptor(), before.st_mode & kPermissions) != 0) return UpdateFailure::notStored;
  if (::fsync(copy.descriptor()) != 0) return UpdateFailure::notStored;
  if (!copy.moveTo(file)) return UpdateFailure::notReplaceable;
  flushFolder(file.parent());  // where that fails the old or the new one is there after a power cut
  return std::nullopt;
}

void SingleFileInstaller::install(std::shared_ptr<PackageFile> package, Ended ended) {
  auto outcome = std::make_shared<std::optional<UpdateFailure>>();
  executor_.runInBackground(
      [file = file_, package = std::move(package), outcome] { *outcome = replace(file, *package); },
      [outcome, ended = std::move(ended)] { ended(*outcome); });
}

}  // namespace quillmere
