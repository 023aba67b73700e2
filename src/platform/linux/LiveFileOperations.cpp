#include "platform/linux/LiveFileOperations.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>

#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

/// Why the operation on `url` failed. A new place whose folder is away does not make the file itself missing.
FileOutcome outcomeOf(int error, const FileURL& url) {
  const bool isMissing = (error == ENOENT || error == ENOTDIR) && !fileStatus(url);
  if (isMissing) return FileOutcome::missing;
  return error == EEXIST ? FileOutcome::destinationExists : FileOutcome::failed;
}

/// GIO writes the info file by way of a temporary one with a longer name, and where that is too long it leaves the info
/// file empty: nobody could restore the screenshot then.
bool hasRoomForTrashInfo(const FileURL& url) {
  constexpr size_t kLongestName = 255;
  constexpr std::string_view kSuffix = ".trashinfo.XXXXXX";
  // Of names that are taken, GIO numbers the next: ".12345" more.
  constexpr size_t kNumber = 6;
  return url.lastPathComponent().size() + kNumber + kSuffix.size() <= kLongestName;
}

}  // namespace

FileOutcome LiveFileOperations::trash(const FileURL& url) {
  // Asked first: GIO words the lack of a file and the lack of a Trash alike.
  if (!fileStatus(url)) return FileOutcome::missing;
  if (!hasRoomForTrashInfo(url)) return FileOutcome::failed;
  // The local file system's own implementation: no daemon is asked.
  GFile* file = g_vfs_get_file_for_path(g_vfs_get_local(), url.c_str());
  GError* error = nullptr;
  const bool done = g_file_trash(file, nullptr, &error);
  const bool isMissing = !done && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_NOT_FOUND);
  g_clear_error(&error);
  g_object_unref(file);
  if (done) return FileOutcome::done;
  return isMissing && !fileStatus(url) ? FileOutcome::missing : FileOutcome::failed;
}

FileOutcome LiveFileOperations::move(const FileURL& from, const FileURL& to) {
  if (from.standardized() == to.standardized()) return FileOutcome::done;
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return FileOutcome::done;
  if (errno != EINVAL) return outcomeOf(errno, from);
  // A file system without that promise: look first.
  if (fileStatus(to)) return FileOutcome::destinationExists;
  return ::rename(from.c_str(), to.c_str()) == 0 ? FileOutcome::done : outcomeOf(errno, from);
}

FileOutcome LiveFileOperations::remove(const FileURL& url) {
  return ::unlink(url.c_str()) == 0 ? FileOutcome::done : outcomeOf(errno, url);
}

bool isInTrash(const FileURL& url, const MountTable& mounts) {
  const FileURL parent = url.parent().resolvingSymlinks().value_or(url.parent().standardized());
  const std::string path = parent.appending(url.lastPathComponent()).path();
  const FileURL dataHome = FileURL::fromPath(std::string_view(g_get_user_data_dir()));
  const FileURL homeFiles = dataHome.appending("Trash/files");
  if (path.starts_with(homeFiles.resolvingSymlinks().value_or(homeFiles).path() + "/")) return true;
  const std::string user = std::to_string(::getuid());
  for (const std::string& trash : {".Trash/" + user, ".Trash-" + user}) {
    // Only at the top of its file system is a folder of this name a Trash; asking costs a look at the mount table.
    const auto at = path.find("/" + trash + "/files/");
    if (at == std::string::npos) continue;
    const auto mount = mounts.covering(parent);
    const std::string top = mount && mount->path != "/" ? mount->path : std::string();
    if (path.starts_with(top + "/" + trash + "/files/")) return true;
  }
  return false;
}

}  // namespace quillmere
