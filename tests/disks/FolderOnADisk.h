#pragma once

#include <sys/mount.h>
#include <filesystem>
#include <ostream>
#include <string>

#include "foundation/FileURL.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// A folder on a disk that can leave, come back and be put in the place of; for the work of a child process with mounts
/// of its own.
class FolderOnADisk {
 public:
  enum class Place {
    mountPoint,   ///< the folder is where the disk is mounted
    subfolder,    ///< of the disk
    bindMount,    ///< of a folder of another place
    folderBelow,  ///< a subfolder, with a folder of the same name and files under the mount point
  };

  explicit FolderOnADisk(Place place) : place_(place) {}

  FileURL url() const { return hasSubfolder() ? point_.appending("shots") : point_; }

  /// Makes both disks, the other one with files of these names, and connects the first.
  bool make(const std::vector<std::string>& names) {
    std::filesystem::create_directory(point_.path());
    if (place_ == Place::bindMount) {
      std::filesystem::create_directory(store_.path());
      return makeDisk(image_.path(), "8M", kMake) && connectDisk(image_.path(), store_.path()) &&
             fill(store_.appending("other"), names) && run("mkdir '" + store_.appending("shots").path() + "'") &&
             connect();
    }
    if (place_ == Place::folderBelow && !fill(url(), names)) return false;
    return makeDisk(image_.path(), "8M", kMake) && makeDisk(otherImage_.path(), "8M", kMake) &&
           connectDisk(otherImage_.path(), point_.path()) && fill(url(), names) && disconnect() && connect() &&
           (!hasSubfolder() || run("mkdir '" + url().path() + "'"));
  }
  bool connect() { return mount("shots", image_); }
  bool connectOther() { return mount("other", otherImage_); }
  /// Also while it is in use.
  bool disconnect() { return ::umount2(point_.c_str(), MNT_DETACH) == 0; }
  bool setReadOnly(bool isOn) {
    const std::string options = place_ == Place::bindMount ? "remount,bind," : "remount,";
    return run("mount -o " + options + (isOn ? "ro '" : "rw '") + point_.path() + "'");
  }
  /// What stands under the name of the folder while the disk is away or another is in its place is as it was made.
  static std::string bytesOfOthers(const std::string& name) { return "another disk's " + name; }
  /// Everything that the disk and its place hold.
  FileURL everything() const { return root_.url(); }

 private:
  static constexpr const char* kMake = "mkfs.ext4 -q -F -I 256 -O ^has_journal";
  bool hasSubfolder() const { return place_ == Place::subfolder || place_ == Place::folderBelow; }
  bool fill(const FileURL& folder, const std::vector<std::string>& names) {
    std::error_code error;
    std::filesystem::create_directories(folder.path(), error);
    for (const std::string& name : names) writeFile(folder.appending(name), bytesOfOthers(name));
    return !error;
  }
  bool mount(const char* name, const FileURL& image) {
    if (place_ != Place::bindMount) return connectDisk(image.path(), point_.path());
    return ::mount(store_.appending(name).c_str(), point_.c_str(), nullptr, MS_BIND, nullptr) == 0;
  }

  const Place place_;
  TemporaryFolder root_;
  const FileURL point_ = root_.file("point");
  const FileURL store_ = root_.file("store");
  const FileURL image_ = root_.file("image");
  const FileURL otherImage_ = root_.file("other image");
};

}  // namespace quillmere::testing
