#include "platform/linux/files/LiveSecurityScopeAccess.h"

#include <dirent.h>
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <ctime>

#include "foundation/FileStatus.h"
#include "platform/linux/files/LiveFileOperations.h"
#include "records/FileIdentity.h"

namespace quillmere {
namespace {

constexpr size_t kMostFoldersKept = 40;
const QString kBookmarkKey = QStringLiteral("quillmere.staging-folder-bookmark");

/// What a path leads to; a symbolic link to a folder counts as the folder.
std::optional<FileStatus> statusThroughLinks(const FileURL& url) {
  const auto real = url.resolvingSymlinks();
  return real ? fileStatus(*real) : std::nullopt;
}

/// The dates of files stand still until the kernel's clock ticks: a folder listed right after a change may change again
/// and keep its date.
bool hasSettled(Date modified) {
  constexpr double kTick = 0.02;
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return std::abs(Date::fromUnix(now.tv_sec, static_cast<uint32_t>(now.tv_nsec)) - modified) > kTick;
}

}  // namespace

bool LiveSecurityScopeAccess::start(const FileURL& url) {
  if (::access(url.c_str(), R_OK) != 0) return false;
  const std::lock_guard lock(mutex_);
  ++openCounts_[url.path()];
  return true;
}

void LiveSecurityScopeAccess::stop(const FileURL& url) {
  const std::lock_guard lock(mutex_);
  const auto count = openCounts_.find(url.path());
  if (count != openCounts_.end() && --count->second == 0) openCounts_.erase(count);
}

int LiveSecurityScopeAccess::openCount() const {
  const std::lock_guard lock(mutex_);
  int sum = 0;
  for (const auto& [path, count] : openCounts_) sum += count;
  return sum;
}

void LiveSecurityScopeAccess::setWatchedFolder(const std::optional<FileURL>& folder) {
  const std::lock_guard lock(mutex_);
  watchedFolder_ = folder;
}

std::optional<QByteArray> LiveSecurityScopeAccess::makeBookmark(const FileURL& url) {
  const auto status = statusThroughLinks(url);
  if (!status || ::access(url.c_str(), R_OK) != 0) return std::nullopt;
  Bookmark bookmark;
  bookmark.url = url.standardized();
  bookmark.volume = mounts_.volume(url);
  bookmark.file = status->inode;
  bookmark.creationDate = status->created;
  bookmark.isDirectory = status->kind == FileStatus::Kind::directory;
  if (bookmark.isDirectory) {
    if (const auto mount = mounts_.covering(url)) bookmark.mountPoint = mount->path;
  }
  return bookmark.encoded();
}

std::optional<SecurityScopeAccess::Resolution> LiveSecurityScopeAccess::resolve(const QByteArray& bytes) {
  const auto bookmark = Bookmark::decode(bytes);
  if (!bookmark) return std::nullopt;
  // A path alone is enough to find the place, and worth making anew: it would not survive a rename.
  if (!bookmark->file) return Resolution{bookmark->url, fileExists(bookmark->url)};
  if (isSameFile(*bookmark, bookmark->url)) return Resolution{bookmark->url, false};
  if (const auto found = search(*bookmark)) return Resolution{*found, true, bookmark->url};
  // A folder made anew under its name on its disk is taken for the old one; a missing one may come back with its disk,
  // and what stands in its place meanwhile is not it. Another file under a file's name is another file.
  if (bookmark->isDirectory) {
    return Resolution{bookmark->url, isReadableDirectory(bookmark->url) && isOnItsDisk(*bookmark)};
  }
  return std::nullopt;
}

bool LiveSecurityScopeAccess::isOnItsDisk(const Bookmark& bookmark) const {
  const auto disk = bookmark.disk();
  return !disk || mounts_.isThere(*disk);
}

bool LiveSecurityScopeAccess::isSameFile(const Bookmark& bookmark, const FileURL& candidate) const {
  constexpr double kDateTolerance = 0.001;
  const auto status = statusThroughLinks(candidate);
  if (!status || status->inode != bookmark.file) return false;
  const bool isDirectory = status->kind == FileStatus::Kind::directory;
  if (isDirectory != bookmark.isDirectory) return false;
  if (bookmark.creationDate && status->created &&
      std::abs(*bookmark.creationDate - *status->created) >= kDateTolerance) {
    return false;
  }
  if (!bookmark.volume) return true;
  const auto volume = mounts_.volume(candidate);
  return volume && canBeSameVolume(*volume, *bookmark.volume);
}

std::optional<FileURL> LiveSecurityScopeAccess::search(const Bookmark& bookmark) {
  // Without a birth time a reused number could not be told from the old file.
  if (!bookmark.creationDate) return std::nullopt;
  if (const auto place = held_.place(*bookmark.file); place && isSameFile(bookmark, *place)) return place;
  for (const FileURL& folder : foldersToSearch(bookmark)) {
    if (auto found = searchFolder(bookmark, folder)) return found;
  }
  return std::nullopt;
}

std::vector<FileURL> LiveSecurityScopeAccess::foldersToSearch(const Bookmark& bookmark) const {
  std::vector<FileURL> folders{bookmark.url.parent()};
  const auto add = [&](const FileURL& folder) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) folders.push_back(folder);
  };
  {
    const std::lock_guard lock(mutex_);
    if (watchedFolder_) add(*watchedFolder_);
    if (bookmark.isDirectory) return folders;
    for (const FileURL& folder : otherFolders_) add(folder);
  }
  for (const FileURL& folder : trashFolders(bookmark.url, mounts_)) add(folder);
  return folders;
}

void LiveSecurityScopeAccess::rememberPlace(const FileURL& file) {
  constexpr size_t kMost = 32;
  const FileURL folder = file.parent();
  const std::lock_guard lock(mutex_);
  if (folder == watchedFolder_ || (!otherFolders_.empty() && otherFolders_.front() == folder)) return;
  std::erase(otherFolders_, folder);
  otherFolders_.push_front(folder);
  if (otherFolders_.size() > kMost) otherFolders_.pop_back();
}

std::optional<FileURL> LiveSecurityScopeAccess::searchFolder(const Bookmark& bookmark, const FileURL& folder) {
  const auto status = statusThroughLinks(folder);
  if (!status) return std::nullopt;
  std::vector<std::string> names;
  {
    // A lock of its own: listing a slow folder must not hold those who only open or end access.
    const std::lock_guard lock(numbersMutex_);
    auto known = numbers_.find(folder);
    if (known == numbers_.end() || known->second.modified != status->modified || !known->second.isSettled) {
      if (numbers_.size() >= kMostFoldersKept) numbers_.clear();
      known =
          numbers_.insert_or_assign(folder, FolderNumbers{status->modified, hasSettled(status->modified), {}}).first;
      if (DIR* stream = ::opendir(folder.c_str())) {
        while (const dirent* entry = ::readdir(stream)) known->second.names.emplace(entry->d_ino, entry->d_name);
        ::closedir(stream);
      }
    }
    const auto [first, last] = known->second.names.equal_range(*bookmark.file);
    for (auto name = first; name != last; ++name) names.push_back(name->second);
  }
  for (const std::string& name : names) {
    const FileURL candidate = folder.appending(name);
    if (isSameFile(bookmark, candidate)) return candidate;
  }
  return std::nullopt;
}

std::optional<QByteArray> LiveWatchFolderStore::bookmark() {
  const auto bookmark = defaults_.data(kBookmarkKey);
  if (bookmark) expectMount(*bookmark);
  return bookmark;
}

bool LiveWatchFolderStore::setBookmark(const QByteArray& bookmark) {
  const auto before = defaults_.data(kBookmarkKey);
  defaults_.set(kBookmarkKey, bookmark);
  if (defaults_.write()) {
    expectMount(bookmark);
    return true;
  }
  // Or it would be written with the next setting that can be.
  if (before) {
    defaults_.set(kBookmarkKey, *before);
  } else {
    defaults_.remove(kBookmarkKey);
  }
  return false;
}

void LiveWatchFolderStore::expectMount(const QByteArray& bytes) {
  const auto bookmark = Bookmark::decode(bytes);
  if (!bookmark) return;
  if (const auto disk = bookmark->disk()) mounts_.expect(*disk);
}

}  // namespace quillmere
