#include "platform/linux/capture/ConfigurationFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

constexpr int64_t kLargestFile = 16 << 20;

/// A file keeps its mode and, where this process may give it, its owner.
bool writeTemporary(int descriptor, const std::string& text, const std::optional<struct stat>& replaced) {
  if (replaced) {
    const bool isKept = ::fchown(descriptor, replaced->st_uid, replaced->st_gid) == 0;
    // The other way round the change of owner would take mode bits away.
    if (::fchmod(descriptor, replaced->st_mode & 07777) != 0) return false;
    if (!isKept && replaced->st_uid != ::getuid()) return false;
  }
  return writeAll(descriptor, text.data(), text.size()) && ::fsync(descriptor) == 0;
}

bool replaceFile(const FileURL& file, const std::string& text) {
  struct stat status {};
  std::optional<struct stat> replaced;
  if (::stat(file.c_str(), &status) == 0) replaced = status;
  std::string temporary = file.parent().appending("." + file.lastPathComponent() + ".XXXXXX").path();
  const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool isWritten = writeTemporary(descriptor, text, replaced);
  const bool isClosed = ::close(descriptor) == 0;
  if (isWritten && isClosed && ::rename(temporary.c_str(), file.c_str()) == 0) {
    flushFolder(file.parent());
    return true;
  }
  ::unlink(temporary.c_str());
  return false;
}

/// The file that a link stands for; none when that is away, since nobody knows what it would hold.
std::optional<FileURL> fileBehind(const FileURL& url) {
  const auto status = fileStatus(url);
  if (!status || status->isRegular()) return url;
  return status->kind == FileStatus::Kind::symbolicLink ? url.resolvingSymlinks() : std::nullopt;
}

}  // namespace

bool ConfigurationFile::exists() const {
  return fileExists(url_);
}

std::optional<std::string> ConfigurationFile::text() const {
  if (auto text = readFile(url_, kLargestFile)) return text;
  struct stat status {};
  const bool isMissing = ::stat(url_.c_str(), &status) != 0 && errno == ENOENT;
  return isMissing ? std::optional(std::string()) : std::nullopt;
}

bool ConfigurationFile::setValue(const ConfigurationKey& key, const std::optional<std::string>& value) const {
  const auto before = text();
  const auto file = fileBehind(url_);
  if (!before || !file) return false;
  const std::string after = withConfigurationValue(*before, key, value);
  // Blanks around it or a line break in it: the value would read as another one.
  if (configurationValue(after, key) != value) return false;
  if (after == *before) return true;
  const bool isNew = !exists();
  // Replacing needs no permission of the file; that it is marked read-only is to be respected all the same.
  if (!isNew && ::access(file->c_str(), W_OK) != 0) return false;
  std::error_code error;
  const bool hasNewFolder = std::filesystem::create_directories(file->parent().path(), error);
  if (replaceFile(*file, after)) {
    const auto written = text();
    if (written && configurationValue(*written, key) == value) return true;
    if (isNew) ::unlink(file->c_str());
    if (!isNew) replaceFile(*file, *before);
  }
  if (hasNewFolder) ::rmdir(file->parent().c_str());
  return false;
}

}  // namespace quillmere
