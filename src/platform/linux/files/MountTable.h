#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "foundation/SystemEvents.h"

class QSocketNotifier;

namespace quillmere {

struct MountPoint {
  std::string path;    ///< where it is mounted
  std::string source;  ///< its device, as a path where it has one
  std::string type;
};
/// Reads the text of /proc/self/mountinfo.
std::vector<MountPoint> parseMountInfo(const std::string& text);
/// The deepest mount point that holds the path; none without any.
std::optional<MountPoint> coveringMount(const std::vector<MountPoint>& mounts, const std::string& path);

/// Which disk a folder is on: what must be mounted where for the folder at the path to be that folder.
struct ExpectedDisk {
  FileURL folder;
  std::string mountPoint;
  std::optional<std::string> volume = std::nullopt;     ///< none: any
  std::optional<uint64_t> folderNumber = std::nullopt;  ///< of a folder that is the mount point itself: its inode
};

/// The mounted file systems. Any thread.
class MountTable {
 public:
  /// Tells `events` of mounts and unmounts from now on.
  explicit MountTable(SystemEvents* events);
  ~MountTable();

  std::optional<MountPoint> covering(const FileURL& url) const;
  /// The file system's UUID, or else its textual device number. Follows symbolic links.
  std::optional<std::string> volume(const FileURL& url) const;

  /// From now on this folder and what is in it count as connected only while its disk is there: the folder under a
  /// mount point that is not in use, or on another disk, looks like the real one, but for its files.
  void expect(ExpectedDisk disk);
  bool isThere(const ExpectedDisk& disk) const;
  /// False for a path that an expected or a removable disk should cover, and does not.
  bool isVolumeMounted(const FileURL& url) const;

 private:
  std::vector<MountPoint> read() const;
  void forgetVolumesOfOtherMounts() const;

  mutable std::mutex mutex_;
  mutable std::map<std::pair<uint32_t, uint32_t>, std::string> volumes_;  // by device, of the mounts as they are
  std::optional<ExpectedDisk> expected_;
  int volumesDescriptor_ = -1;  // tells whether mounts have changed since `volumes_`
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quillmere
