#include "formats/PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

namespace quillmere {
namespace {

/// Room for a reader that wants a few bytes behind the text, so that a large file is not copied for them.
constexpr size_t kSpareBytes = 32;

}  // namespace

PictureFile::PictureFile(const FileURL& url) {
  // Not blocking: a named pipe in the file's place must not hold the program.
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
  take(descriptor);
  if (!isOpen() && descriptor >= 0) ::close(descriptor);
}

PictureFile::PictureFile(int descriptor) : isOwn_(false) {
  take(descriptor);
}

void PictureFile::take(int descriptor) {
  struct stat status {};
  if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
  descriptor_ = descriptor;
  size_ = status.st_size;
}

PictureFile::~PictureFile() {
  if (isOwn_ && isOpen()) ::close(descriptor_);
}

std::string PictureFile::bytes(int64_t offset, int64_t count) const {
  std::string bytes;
  const int64_t wanted = std::clamp<int64_t>(size_ - offset, 0, count);
  bytes.reserve(static_cast<size_t>(wanted) + kSpareBytes);
  bytes.resize(static_cast<size_t>(wanted));
  size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t got = ::pread(descriptor_, bytes.data() + filled, bytes.size() - filled,
                                static_cast<off_t>(offset) + static_cast<off_t>(filled));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    filled += static_cast<size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

Result<std::string, PictureError> PictureFile::all() const {
  std::string all = bytes(0, size_);
  if (static_cast<int64_t>(all.size()) != size_) return PictureError::unreadable;
  return all;
}

bool PictureFile::isMostlyHoles() const {
  // What is compressed as zeros alone stands for a thousand times as many; and a file this small is soon read.
  constexpr int64_t kSmall = 4 << 20;
  constexpr int kMostParts = 4096;
  if (size_ <= kSmall) return false;
  int64_t written = 0;
  off_t place = 0;
  for (int part = 0; part < kMostParts && place < size_; ++part) {
    const off_t data = ::lseek(descriptor_, place, SEEK_DATA);
    // Nothing more is written. A file system that can't tell says that all is.
    if (data < 0) return errno == ENXIO && written < size_ / 2;
    const off_t hole = ::lseek(descriptor_, data, SEEK_HOLE);
    if (hole <= data) return false;
    written += hole - data;
    if (written >= size_ / 2) return false;
    place = hole;
  }
  return written < size_ / 2;
}

}  // namespace quillmere
