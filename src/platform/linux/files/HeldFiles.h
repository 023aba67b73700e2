#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/linux/files/MountTable.h"

namespace quillmere {

/// Files that the kernel follows for us: a descriptor without access (O_PATH) names the place of its file also after
/// the file was moved on its file system. It would keep a disk from leaving, so only files on the file system of the
/// root folder or of the home folder are held. Any thread.
class HeldFiles {
 public:
  static constexpr size_t kMost = 200;

  explicit HeldFiles(const MountTable& mounts) : mounts_(mounts) {}
  ~HeldFiles();
  HeldFiles(const HeldFiles&) = delete;
  HeldFiles& operator=(const HeldFiles&) = delete;

  /// These and no others, the first `kMost` of them, or a quarter of what the process may open. What was held and is
  /// not among them is let go, or its deletion would not give its room back.
  void hold(const std::vector<FileURL>& files);
  /// Where the held file with this inode is now; none when it is not held or has been deleted.
  std::optional<FileURL> place(uint64_t inode) const;
  size_t count() const;

 private:
  bool canHoldIn(const FileURL& folder) const;

  struct Held {
    int descriptor = -1;
    uint64_t inode = 0;
  };
  const MountTable& mounts_;
  mutable std::mutex mutex_;
  std::map<FileURL, Held> files_;  // by the place where it was when it was taken
};

}  // namespace quillmere
