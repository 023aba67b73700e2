#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "records/ScreenshotList.h"

namespace quillmere {

/// The watched folder's path as given and with symbolic links resolved.
struct WatchFolderPaths {
  std::string standardized;
  std::string canonical;
  bool operator==(const WatchFolderPaths&) const = default;

  /// Whether a path key lies below the folder.
  bool contains(const std::string& key) const { return key.starts_with(canonical + "/"); }
};
WatchFolderPaths watchFolderPaths(const FileURL& folder);

/// The canonical path of a file, which stays the same after the file has vanished. A file directly in the watched
/// folder costs no look at the disk.
std::string pathKey(const FileURL& url, const std::optional<WatchFolderPaths>& watchFolder);

/// Looks up records by the place and by the number of their file.
class RecordIndex {
 public:
  RecordIndex(const ScreenshotList& items, const std::optional<WatchFolderPaths>& watchFolder);
  void add(const ScreenshotItem& item, const std::optional<WatchFolderPaths>& watchFolder);
  /// Forgets the record as it was added. False where two records shared a path, and the index must be made anew.
  bool remove(const ScreenshotItem& item);

  std::optional<UUID> atPath(const std::string& key) const;
  std::vector<UUID> withFileNumber(uint64_t file) const;
  std::unordered_set<std::string> paths() const;
  /// Paths that several records have; the file there is only one's.
  const std::unordered_set<std::string>& sharedPaths() const { return shared_; }

 private:
  std::unordered_map<std::string, UUID> paths_;
  UUIDMap<const std::string*> keys_;  ///< of each record, in `paths_`: finding it anew would be a look at the disk
  std::unordered_set<std::string> shared_;
  std::unordered_map<uint64_t, std::vector<UUID>> inodes_;
};

}  // namespace quillmere
