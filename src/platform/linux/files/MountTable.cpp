#include "platform/linux/files/MountTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/btrfs.h>
#include <linux/fs.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <QtCore/QSocketNotifier>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>

#include "foundation/FileStatus.h"
#include "records/FileIdentity.h"

namespace quillmere {
namespace {

#ifndef FS_IOC_GETFSUUID
struct fsuuid2 {
  __u8 len;
  __u8 uuid[16];
};
#define FS_IOC_GETFSUUID _IOR(0x15, 0, struct fsuuid2)
#endif

/// mountinfo writes blanks, tabs, newlines and backslashes as three octal digits.
std::string unescape(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    int code = 0;
    if (text[i] == '\\' && i + 3 < text.size() &&
        std::from_chars(text.data() + i + 1, text.data() + i + 4, code, 8).ptr == text.data() + i + 4) {
      result.push_back(static_cast<char>(code));
      i += 3;
    } else {
      result.push_back(text[i]);
    }
  }
  return result;
}

bool covers(const std::string& folder, const std::string& path) {
  return folder == "/" || path == folder || path.starts_with(folder + "/");
}

/// None for zeros, which stand for no UUID.
std::optional<std::string> textOf(const __u8 (&uuid)[16]) {
  constexpr std::array<__u8, sizeof uuid> kNone{};
  if (std::memcmp(uuid, kNone.data(), sizeof uuid) == 0) return std::nullopt;
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < sizeof uuid; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(kHex[uuid[i] >> 4]);
    text.push_back(kHex[uuid[i] & 15]);
  }
  return text;
}

std::optional<std::string> uuidByIoctl(const FileURL& url) {
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::nullopt;
  std::optional<std::string> uuid;
  fsuuid2 answer{};
  // Btrfs has a question of its own. Its device numbers are made up at each mount, one a subvolume.
  btrfs_ioctl_fs_info_args info{};
  if (::ioctl(descriptor, FS_IOC_GETFSUUID, &answer) == 0) {
    if (answer.len == sizeof answer.uuid) uuid = textOf(answer.uuid);
  } else if (::ioctl(descriptor, BTRFS_IOC_FS_INFO, &info) == 0) {
    uuid = textOf(info.fsid);
  }
  ::close(descriptor);
  return uuid;
}

std::optional<std::string> uuidOfDevice(const std::string& device) {
  struct stat wanted {};
  if (device.empty() || device.front() != '/' || ::stat(device.c_str(), &wanted) != 0) return std::nullopt;
  std::optional<std::string> found;
  listDirectory(FileURL::fromPath(std::string_view("/dev/disk/by-uuid")), [&](int folder, const char* name, EntryKind) {
    struct stat candidate {};
    if (!found && ::fstatat(folder, name, &candidate, 0) == 0 && candidate.st_rdev == wanted.st_rdev) found = name;
  });
  return found;
}

/// The folders in which the desktop mounts removable disks.
std::vector<std::string> diskRoots() {
  std::vector<std::string> roots{"/mnt", "/media", "/run/media"};
  if (const char* user = std::getenv("USER")) {
    roots.push_back(std::string("/media/") + user);
    roots.push_back(std::string("/run/media/") + user);
  }
  return roots;
}

}  // namespace

std::vector<MountPoint> parseMountInfo(const std::string& text) {
  std::vector<MountPoint> mounts;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    // id parent major:minor root mountpoint options [tags] - type source super-options; a field may be empty, and other
    // white space than blanks stands in it as it is.
    std::vector<std::string> fields;
    std::istringstream words(line);
    for (std::string word; std::getline(words, word, ' ');) fields.push_back(word);
    const auto separator = std::find(fields.begin(), fields.end(), "-");
    if (separator - fields.begin() < 6 || fields.end() - separator < 4) continue;
    mounts.push_back({unescape(fields[4]), unescape(separator[2]), separator[1]});
  }
  return mounts;
}

std::optional<MountPoint> coveringMount(const std::vector<MountPoint>& mounts, const std::string& path) {
  std::optional<MountPoint> deepest;
  for (const MountPoint& mount : mounts) {
    // Of several at one place the last one hides the others.
    if (covers(mount.path, path) && (!deepest || mount.path.size() >= deepest->path.size())) deepest = mount;
  }
  return deepest;
}

MountTable::MountTable(SystemEvents* events) {
  constexpr const char* kTable = "/proc/self/mountinfo";
  volumesDescriptor_ = ::open(kTable, O_RDONLY | O_CLOEXEC);
  if (!events) return;
  descriptor_ = ::open(kTable, O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) return;
  // A change shows as an exceptional condition; the file is always readable.
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Exception);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [events] { events->volumesDidChange(); });
}

MountTable::~MountTable() {
  notifier_.reset();
  if (volumesDescriptor_ >= 0) ::close(volumesDescriptor_);
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::vector<MountPoint> MountTable::read() const {
  std::ifstream file("/proc/self/mountinfo");
  std::ostringstream text;
  text << file.rdbuf();
  return parseMountInfo(text.str());
}

std::optional<MountPoint> MountTable::covering(const FileURL& url) const {
  const FileURL real = url.resolvingSymlinks().value_or(url.standardized());
  return coveringMount(read(), real.path());
}

std::optional<std::string> MountTable::volume(const FileURL& url) const {
  struct stat status {};
  if (::stat(url.c_str(), &status) != 0) return std::nullopt;
  const std::pair<uint32_t, uint32_t> device{major(status.st_dev), minor(status.st_dev)};
  {
    const std::lock_guard lock(mutex_);
    forgetVolumesOfOtherMounts();
    if (const auto known = volumes_.find(device); known != volumes_.end()) return known->second;
  }
  auto volume = uuidByIoctl(url);
  if (!volume) {
    // A file that cannot be opened is on the volume of those that can.
    if (const auto mount = covering(url)) {
      volume = uuidByIoctl(FileURL::fromPath(mount->path));
      if (!volume) volume = uuidOfDevice(mount->source);
    }
  }
  if (!volume) volume = std::to_string(device.first) + ":" + std::to_string(device.second);
  const std::lock_guard lock(mutex_);
  volumes_[device] = *volume;
  return volume;
}

/// Another disk may get the device number of one that has left. Asked here and not only told by the event loop: a look
/// at a file may come before the event.
void MountTable::forgetVolumesOfOtherMounts() const {
  pollfd changes{volumesDescriptor_, POLLPRI, 0};
  const bool isUnchanged = volumesDescriptor_ >= 0 && ::poll(&changes, 1, 0) == 0;
  if (!isUnchanged) volumes_.clear();
}

void MountTable::expect(ExpectedDisk disk) {
  const std::lock_guard lock(mutex_);
  disk.folder = disk.folder.standardized();
  expected_ = std::move(disk);
}

bool MountTable::isThere(const ExpectedDisk& disk) const {
  const auto mount = covering(disk.folder);
  if (!mount || (mount->path != disk.mountPoint && covers(mount->path, disk.mountPoint))) return false;
  // Without a UUID one disk cannot be told from another.
  if (!disk.volume || !isStableVolume(*disk.volume)) return true;
  const FileURL place = FileURL::fromPath(mount->path);
  if (volume(place) != disk.volume) return false;
  const auto status = disk.folderNumber ? fileStatus(place) : std::nullopt;
  return !status || status->inode == disk.folderNumber;
}

bool MountTable::isVolumeMounted(const FileURL& url) const {
  const auto mount = covering(url);
  if (!mount) return false;
  const std::string path = url.standardized().path();
  std::optional<ExpectedDisk> expected;
  {
    const std::lock_guard lock(mutex_);
    if (expected_ && covers(expected_->folder.path(), path)) expected = expected_;
  }
  if (expected && !isThere(*expected)) return false;
  for (const std::string& root : diskRoots()) {
    if (path != root && covers(root, path) && mount->path != root && covers(mount->path, root)) return false;
  }
  return isReadableDirectory(FileURL::fromPath(mount->path));
}

}  // namespace quillmere
