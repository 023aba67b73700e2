#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "model/AppModelDependencies.h"
#include "platform/linux/files/Bookmark.h"
#include "platform/linux/files/HeldFiles.h"
#include "platform/linux/files/MountTable.h"

namespace quillmere {

/// Bookmarks over inodes. A bookmark answers its path while the same file stands there. A file that is held is found
/// wherever it was moved on its file system; another is looked for by its inode in the folder last known, the watched
/// folder, the Trash, and the folders where other files were found. A reused inode number never passes: the birth time
/// must match.
class LiveSecurityScopeAccess final : public SecurityScopeAccess {
 public:
  explicit LiveSecurityScopeAccess(MountTable& mounts) : mounts_(mounts) {}

  bool start(const FileURL& url) override;
  void stop(const FileURL& url) override;
  std::optional<QByteArray> makeBookmark(const FileURL& url) override;
  std::optional<Resolution> resolve(const QByteArray& bookmark) override;

  void rememberPlace(const FileURL& file) override;

  void setWatchedFolder(const std::optional<FileURL>& folder);
  /// From now on these files, or the first 200 of them, are found wherever they are moved, as far as that keeps no disk
  /// from leaving.
  void hold(const std::vector<FileURL>& files) { held_.hold(files); }
  /// Starts that no stop has answered yet.
  int openCount() const;

 private:
  bool isSameFile(const Bookmark& bookmark, const FileURL& candidate) const;
  bool isOnItsDisk(const Bookmark& bookmark) const;
  std::optional<FileURL> search(const Bookmark& bookmark);
  std::vector<FileURL> foldersToSearch(const Bookmark& bookmark) const;
  std::optional<FileURL> searchFolder(const Bookmark& bookmark, const FileURL& folder);

  /// The inode numbers of a folder's entries: looking for many lost files lists it once.
  struct FolderNumbers {
    Date modified;
    bool isSettled = false;  ///< a later change of the folder will show in its date
    std::multimap<uint64_t, std::string> names;
  };

  MountTable& mounts_;
  mutable std::mutex mutex_;
  std::map<std::string, int> openCounts_;
  std::optional<FileURL> watchedFolder_;
  std::mutex numbersMutex_;
  std::map<FileURL, FolderNumbers> numbers_;
  std::deque<FileURL> otherFolders_;  // where files were found, the last ones first
  HeldFiles held_{mounts_};
};

/// Keeps the folder's bookmark in the settings, and has its file system expected.
class LiveWatchFolderStore final : public WatchFolderStore {
 public:
  LiveWatchFolderStore(UserDefaults& defaults, MountTable& mounts) : defaults_(defaults), mounts_(mounts) {}
  std::optional<QByteArray> bookmark() override;
  bool setBookmark(const QByteArray& bookmark) override;

 private:
  void expectMount(const QByteArray& bookmark);
  UserDefaults& defaults_;
  MountTable& mounts_;
};

}  // namespace quillmere
