#include "foundation/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <vector>

#include "foundation/SystemFiles.h"

namespace quillmere {

bool writeAll(int descriptor, const char* bytes, size_t count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    count -= static_cast<size_t>(written);
  }
  return true;
}

namespace {

bool flushOpened(const FileURL& url, int flags) {
  const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(::open(url.c_str(), O_RDONLY | O_CLOEXEC | flags)));
  if (descriptor < 0) return false;
  const bool flushed = TEMP_FAILURE_RETRY(::fsync(descriptor)) == 0;
  ::close(descriptor);
  return flushed;
}

}  // namespace

bool flushFile(const FileURL& file) {
  return flushOpened(file, O_NOFOLLOW | O_NONBLOCK);
}

bool flushFolder(const FileURL& folder) {
  return flushOpened(folder, O_DIRECTORY);
}

namespace {

FileURL targetOf(const FileURL& file) {
  return file.resolvingSymlinks().value_or(file);
}
FileURL unfinished(const FileURL& target) {
  return target.parent().appending(target.lastPathComponent() + ".saving");
}

bool writeNew(const FileURL& file, std::string_view bytes, mode_t mode) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(::open(file.c_str(), kFlags, S_IRUSR | S_IWUSR)));
  if (descriptor < 0) return false;
  const bool isWritten = writeAll(descriptor, bytes.data(), bytes.size()) && ::fchmod(descriptor, mode) == 0 &&
                         TEMP_FAILURE_RETRY(::fsync(descriptor)) == 0;
  ::close(descriptor);
  return isWritten;
}

}  // namespace

bool replaceFile(const FileURL& file, std::string_view bytes) {
  constexpr mode_t kPermissions = 0777;
  const FileURL target = targetOf(file);
  const FileURL fresh = unfinished(target);
  std::error_code ignored;  // a folder that cannot be made shows when the file is opened
  std::filesystem::create_directories(target.parent().path(), ignored);
  ::unlink(fresh.c_str());
  struct stat status {};
  const bool isThere = ::stat(target.c_str(), &status) == 0;
  const bool isReplaced = writeNew(fresh, bytes, isThere ? status.st_mode & kPermissions : S_IRUSR | S_IWUSR) &&
                          TEMP_FAILURE_RETRY(::rename(fresh.c_str(), target.c_str())) == 0;
  if (!isReplaced) {
    const int reason = errno;
    ::unlink(fresh.c_str());
    errno = reason;
  }
  return isReplaced && flushFolder(target.parent());
}

void removeUnfinished(const FileURL& file) {
  ::unlink(unfinished(targetOf(file)).c_str());
}

bool copyBytes(int from, int64_t offset, int64_t length, int to) {
  const int64_t copied = SystemFiles::copyRange(from, offset, length, to);
  int64_t position = offset + copied;
  length -= copied;
  // Some file systems refuse to copy in the kernel, or stop short.
  std::vector<char> buffer(length > 0 ? 1 << 20 : 0);
  while (length > 0) {
    const auto wanted = std::min<size_t>(static_cast<size_t>(length), buffer.size());
    const ssize_t count = ::pread(from, buffer.data(), wanted, position);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0 || !writeAll(to, buffer.data(), static_cast<size_t>(count))) return false;
    position += count;
    length -= count;
  }
  return true;
}

CopyResult copyFile(const FileURL& source, const FileURL& destination) {
  const int from = ::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
  if (from < 0) return CopyResult::failed;
  struct stat status {};
  if (::fstat(from, &status) != 0 || !S_ISREG(status.st_mode)) {
    ::close(from);
    return CopyResult::failed;
  }
  const int to = ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (to < 0) {
    const bool exists = errno == EEXIST;
    ::close(from);
    return exists ? CopyResult::destinationExists : CopyResult::failed;
  }
  const bool copied = copyBytes(from, 0, status.st_size, to) && ::fsync(to) == 0;
  const bool closed = ::close(to) == 0;
  ::close(from);
  if (copied && closed) return CopyResult::done;
  ::unlink(destination.c_str());
  return CopyResult::failed;
}

std::optional<FileURL> copyAside(const FileURL& source, const FileURL& folder, const std::string& stem) {
  constexpr int kMaxTries = 100;
  for (int attempt = 1; attempt <= kMaxTries; ++attempt) {
    const std::string number = attempt == 1 ? std::string() : "-" + std::to_string(attempt);
    const FileURL copy = folder.appending(stem + number + ".json");
    switch (copyFile(source, copy)) {
      case CopyResult::done:
        return copy;
      case CopyResult::destinationExists:
        continue;
      case CopyResult::failed:
        return std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace quillmere
