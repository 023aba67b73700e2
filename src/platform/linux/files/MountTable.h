#pragma once

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

/// The mounted file systems. Any thread.
class MountTable {
 public:
  /// Tells `events` of mounts and unmounts from now on.
  explicit MountTable(SystemEvents* events);
  ~MountTable();

  std::optional<MountPoint> covering(const FileURL& url) const;
  /// The file system's UUID, or else its textual device number. Follows symbolic links.
  std::optional<std::string> volume(const FileURL& url) const;

  /// From now on this folder counts as connected only while `mountPoint` is mounted: the folder under a mount point
  /// that is not in use looks like the real one, only empty.
  void expect(const FileURL& folder, const std::string& mountPoint);
  /// False for a path that an expected mount point or a removable disk should cover, and does not.
  bool isVolumeMounted(const FileURL& url) const;

 private:
  std::vector<MountPoint> read() const;

  mutable std::mutex mutex_;
  mutable std::map<std::pair<uint32_t, uint32_t>, std::string> volumes_;  // by device; emptied when mounts change
  std::optional<std::pair<std::string, std::string>> expected_;           // folder, mount point
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quillmere
