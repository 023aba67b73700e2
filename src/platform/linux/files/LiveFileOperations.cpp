#include "platform/linux/files/LiveFileOperations.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>
#include <QtCore/QString>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "platform/linux/files/MoveAcrossDisks.h"

namespace quillmere {
namespace {

/// Whether the system says that nothing is there. A look that was refused says nothing.
bool isNothingAt(const FileURL& url) {
  return !fileStatus(url) && (errno == ENOENT || errno == ENOTDIR);
}

/// Why the operation on `url` failed. A new place whose folder is away does not make the file itself missing.
FileOutcome outcomeOf(int error, const FileURL& url) {
  const bool isMissing = (error == ENOENT || error == ENOTDIR) && isNothingAt(url);
  if (isMissing) return FileOutcome::missing;
  return error == EEXIST ? FileOutcome::destinationExists : FileOutcome::failed;
}

QString systemReason(int error) {
  return qt_error_string(error) + QLatin1Char('.');
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

/// Knows a file's place also after it was moved.
class PlaceOfFile {
 public:
  explicit PlaceOfFile(const FileURL& url) : descriptor_(::open(url.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)) {}
  PlaceOfFile(const PlaceOfFile&) = delete;
  PlaceOfFile& operator=(const PlaceOfFile&) = delete;
  ~PlaceOfFile() {
    if (isKnown()) ::close(descriptor_);
  }
  bool isKnown() const { return descriptor_ >= 0; }
  FileURL now() const {
    std::array<char, PATH_MAX> path{};
    const ssize_t length =
        ::readlink(("/proc/self/fd/" + std::to_string(descriptor_)).c_str(), path.data(), path.size());
    return length > 0 ? FileURL::fromPath(std::string_view(path.data(), static_cast<size_t>(length))) : FileURL();
  }

 private:
  int descriptor_;
};

/// Where the Trash keeps what is needed to restore a file that lies in it.
FileURL trashInfo(const FileURL& trashed) {
  return trashed.parent().parent().appending("info").appending(trashed.lastPathComponent() + ".trashinfo");
}

/// This person's, at the top of a file system: in the one of all, or alone.
std::array<std::string, 2> trashesAtTop() {
  const std::string user = std::to_string(::getuid());
  return {".Trash/" + user, ".Trash-" + user};
}

/// Also after a power cut: GIO does not flush the info file, whose contents may come to the disk long after the names
/// in the Trash.
bool isRestorable(const FileURL& trashed) {
  const FileURL place = trashInfo(trashed);
  const auto info = readFile(place);
  return info && info->starts_with("[Trash Info]\n") && info->find("\nPath=") != std::string::npos && flushFile(place);
}

}  // namespace

FileOutcome LiveFileOperations::trash(const FileURL& url, TrashReport& report) {
  const auto refused = [&](int error) {
    report.reason = systemReason(error);
    return FileOutcome::failed;
  };
  const PlaceOfFile place(url);
  if (!place.isKnown()) {
    const int error = errno;
    return isNothingAt(url) ? FileOutcome::missing : refused(error);
  }
  if (!hasRoomForTrashInfo(url)) return refused(ENAMETOOLONG);
  // The local file system's own implementation: no daemon is asked.
  GFile* file = g_vfs_get_file_for_path(g_vfs_get_local(), url.c_str());
  GError* error = nullptr;
  const bool isDone = g_file_trash(file, nullptr, &error);
  g_object_unref(file);
  if (error) {
    report.reason = QString::fromUtf8(error->message) + QLatin1Char('.');
    g_error_free(error);
  }
  // Asked of the file system: GIO words the lack of a file and the lack of a Trash alike.
  if (!isDone) return isNothingAt(url) ? FileOutcome::missing : FileOutcome::failed;
  // GIO does not look whether it could write the info file, on a full disk above all. What nobody could restore comes
  // back.
  const FileURL trashed = place.now();
  const bool isInFiles = trashed.parent().lastPathComponent() == "files";
  touch({url.parent()});
  if (isInFiles) touch({trashed.parent(), trashInfo(trashed).parent()});
  if (isInFiles && !isRestorable(trashed) && restore(trashed, url) == FileOutcome::done) return refused(ENOSPC);
  if (isInFiles) report.place = trashed;
  left_(url);
  return FileOutcome::done;
}

FileOutcome LiveFileOperations::restore(const FileURL& place, const FileURL& url) {
  const FileOutcome outcome = move(place, url);
  if (outcome == FileOutcome::done) {
    ::unlink(trashInfo(place).c_str());
    touch({trashInfo(place).parent()});
  }
  return outcome;
}

FileOutcome LiveFileOperations::move(const FileURL& from, const FileURL& to, QString& reason) {
  if (from.standardized() == to.standardized()) return FileOutcome::done;
  int error = renameWithoutReplacing(from, to);
  if (error == EXDEV && from.parent() != to.parent()) error = moveAcrossDisks(from, to);
  if (error == 0) {
    touch({from.parent(), to.parent()});
    left_(from);
    return FileOutcome::done;
  }
  reason = systemReason(error);
  return outcomeOf(error, from);
}

void LiveFileOperations::finishMove(const FileURL& from, const FileURL& to) {
  quillmere::finishMove(from, to);
  touch({from.parent(), to.parent()});
  left_(from);
}

FileOutcome LiveFileOperations::remove(const FileURL& url) {
  if (TEMP_FAILURE_RETRY(::unlink(url.c_str())) != 0) return outcomeOf(errno, url);
  touch({url.parent()});
  left_(url);
  return FileOutcome::done;
}

void LiveFileOperations::touch(std::initializer_list<FileURL> folders) {
  const std::lock_guard lock(touching_);
  touched_.insert(folders);
}

/// Whoever finds nothing to flush has waited for those who are flushing it.
void LiveFileOperations::flush() {
  const std::lock_guard flushing(flushing_);
  std::set<FileURL> folders;
  {
    const std::lock_guard lock(touching_);
    folders = std::exchange(touched_, {});
  }
  for (const FileURL& folder : folders) flushFolder(folder);
}

std::vector<FileURL> trashFolders(const FileURL& file, const MountTable& mounts) {
  std::vector<FileURL> folders{FileURL::fromPath(std::string_view(g_get_user_data_dir())).appending("Trash/files")};
  const auto mount = mounts.covering(file.parent());
  if (!mount || mount->path == "/") return folders;
  const FileURL top = FileURL::fromPath(mount->path);
  for (const std::string& trash : trashesAtTop()) folders.push_back(top.appending(trash + "/files"));
  return folders;
}

bool isInTrash(const FileURL& url, const MountTable& mounts) {
  const FileURL parent = url.parent().resolvingSymlinks().value_or(url.parent().standardized());
  const std::string path = parent.appending(url.lastPathComponent()).path();
  const FileURL dataHome = FileURL::fromPath(std::string_view(g_get_user_data_dir()));
  const FileURL homeFiles = dataHome.appending("Trash/files");
  if (path.starts_with(homeFiles.resolvingSymlinks().value_or(homeFiles).path() + "/")) return true;
  for (const std::string& trash : trashesAtTop()) {
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
