#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "foundation/FileStatus.h"
#include "model/AppModelDependencies.h"
#include "model/HistoryExecutor.h"
#include "monitor/ScreenshotInboxMonitor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// Memory rather than a disk, where there is some: a history writes the list often, and each time flushes it.
inline std::string quickFolder() {
  const FileURL memory = FileURL::fromPath("/dev/shm");
  const bool isUsable = isReadableDirectory(memory) && ::access(memory.c_str(), W_OK) == 0;
  return (isUsable ? memory : FileURL::fromPath(std::filesystem::temp_directory_path().string()))
      .resolvingSymlinks()
      ->path();
}

/// Real files in real folders, each known by a number of its own, whatever name or inode it has. The birth times are
/// the world's, since the real ones go by the real clock; so a file can take over the inode of another that is gone.
class HistoryWorld {
 public:
  struct File {
    int number = 0;
    FileURL url;  ///< empty: deleted
    Date born;
    bool isCapture = true;
    bool isWhole = true;
    bool isEvicted = false;
    bool isResized = false;
    int bookmarkSeries = 0;  ///< bookmarks of an earlier series do not resolve
  };
  /// How far a bookmark finds its file.
  enum class BookmarkReach {
    everywhere,
    ownAndWatchedFolder,  ///< as far as inodes can be looked up
  };

  HistoryWorld() {
    files_.reserve(kMostFiles);
    for (const FileURL& url : {folder, elsewhere, trash, listFile.parent()}) {
      std::filesystem::create_directories(url.path());
    }
  }

  // --- Time ---

  Date now() const {
    return Date{kStart + clockOffset + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
  }

  // --- What stands where ---

  File* find(int number) { return number > 0 ? &files_[static_cast<size_t>(number) - 1] : nullptr; }
  File* at(const FileURL& url) {
    const auto found = places_.find(url.path());
    return found == places_.end() ? nullptr : find(found->second);
  }
  std::vector<File>& files() { return files_; }
  std::vector<File*> filesIn(const FileURL& place) {
    std::vector<File*> found;
    for (File& file : files_) {
      if (!file.url.isEmpty() && file.url.parent() == place) found.push_back(&file);
    }
    return found;
  }
  std::optional<FileIdentity> identityOf(const FileURL& url) {
    ask();
    const File* file = at(url);
    const auto status = fileStatus(url);
    if (!file || !status) return std::nullopt;
    return FileIdentity{"volume", status->inode, file->born, status->size};
  }
  /// Whether the running program has listed the folder; until then old files are taken for known.
  bool isListed() const { return isListed_; }
  void forgetListing() { isListed_ = false; }
  /// Whether a file that appears here now is news: the program has seen that the name was free.
  bool isKnownToBeFree(const FileURL& url) {
    if (at(url)) return false;
    const auto last = lastChanges_.find(placeOnceMounted(url).path());
    return last == lastChanges_.end() || last->second <= seenChanges_;
  }

  // --- What happens ---

  File& create(const FileURL& url, double age = 0) {
    if (File* old = at(url)) erase(*old);
    return add(url, age);
  }
  /// Another file with the inode of this one, which is gone.
  File& createWithTheInodeOf(File& old) {
    const FileURL url = old.url;
    old.url = FileURL();
    return add(url, 0);
  }
  void move(File& file, const FileURL& to) {
    if (File* old = at(to)) forget(*old);
    std::filesystem::rename(file.url.path(), to.path());
    places_.erase(file.url.path());
    note(file.url);
    file.url = to;
    places_[to.path()] = file.number;
    note(to);
  }
  void swap(File& a, File& b) {
    const FileURL urlOfA = a.url;
    const FileURL urlOfB = b.url;
    move(a, home.file("swapping"));
    move(b, urlOfA);
    move(a, urlOfB);
  }
  void erase(File& file) {
    std::filesystem::remove(file.url.path());
    forget(file);
  }
  void edit(File& file, bool resizes) {
    const auto size = fileStatus(file.url)->size;
    writeFile(file.url, std::string(static_cast<size_t>(size) + (resizes ? 1 : 0), 'e'));
    stamp(file.url);
    file.isResized = file.isResized || resizes;
  }
  void finishWriting(File& file) {
    file.isWhole = true;
    stamp(file.url);
  }
  void moveFolder(const FileURL& to) {
    std::filesystem::rename(folder.path(), to.path());
    const FileURL from = folder;
    for (File* file : filesIn(from)) {
      places_.erase(file->url.path());
      file->url = to.appending(file->url.lastPathComponent());
      places_[file->url.path()] = file->number;
    }
    // What was not yet seen under the old name is not seen under the new one.
    if (isMounted) {
      for (const auto& [path, change] : std::map(lastChanges_)) {
        const FileURL url = FileURL::fromPath(path);
        if (url.parent() == from) lastChanges_[to.appending(url.lastPathComponent()).path()] = change;
      }
    }
    folder = to;
  }
  void eject(bool leavesMountPoint) {
    mountPoint = folder;
    isMounted = false;
    moveFolder(home.file("away"));
    if (leavesMountPoint) std::filesystem::create_directory(mountPoint.path());
  }
  void connect() {
    std::filesystem::remove(mountPoint.path());
    moveFolder(mountPoint);
    isMounted = true;
  }
  FileURL freeName(const FileURL& place, const FileURL& wanted) {
    FileURL url = place.appending(wanted.lastPathComponent());
    for (int i = 2; fileExists(url); ++i) url = place.appending(wanted.stem() + " " + std::to_string(i) + ".png");
    return url;
  }

  // --- What a program asks ---

  ScanServices scanServices() {
    ScanServices services;
    services.isDataless = [this](const FileURL& url) { return isEvicted(url); };
    services.isSynced = [](const FileURL&) { return false; };
    services.isVolumeMounted = [this](const FileURL&) {
      // A scan's first question: it will see every change until now.
      if (executor.isWorking() && isMounted) listedChanges_ = changes_;
      ask();
      return isMounted;
    };
    services.hasScreenCaptureTag = [this](const FileURL& url) {
      ask();
      const File* file = at(url);
      return file && file->isCapture;
    };
    services.decodeCompletely = [this](const std::vector<FileURL>& urls) {
      std::vector<bool> answers;
      for (const FileURL& url : urls) {
        const File* file = at(url);
        answers.push_back(file && file->isWhole);
      }
      return answers;
    };
    services.fileDates = [this](const FileURL& url) {
      const File* file = at(url);
      return file ? FileDates{.created = file->born} : FileDates{};
    };
    return services;
  }
  bool isEvicted(const FileURL& url) {
    const File* file = at(url);
    return file && file->isEvicted;
  }
  bool isInTrash(const FileURL& url) {
    ask();
    return url.parent() == trash;
  }
  bool isFolderReachable(const FileURL& url) {
    const bool isOnTheDisk = url == (isMounted ? folder : mountPoint);
    return isReadableDirectory(url) && (isMounted || !isOnTheDisk);
  }

  static constexpr double kStart = 700000000.0;

  TemporaryFolder home{quickFolder()};
  FileURL folder = home.file("shots");  ///< where the watched folder is; not where it should be, while its disk is away
  FileURL mountPoint;
  const FileURL elsewhere = home.file("elsewhere");
  const FileURL trash = home.file("trash");
  const FileURL listFile = home.file("data").appending("screenshots.json");
  const FileURL settingsFile = home.file("settings.json");

  HistoryExecutor executor{[this] { return std::exchange(listedChanges_, std::nullopt); },
                           [this](int listed) {
                             seenChanges_ = std::max(seenChanges_, listed);
                             isListed_ = true;
                           }};
  double clockOffset = 0;
  bool isMounted = true;
  BookmarkReach reach = BookmarkReach::everywhere;
  /// Called at each question that background work asks.
  std::function<void()> onQuestion;

 private:
  /// So that a file stays where it is while others come.
  static constexpr size_t kMostFiles = 1000;

  File& add(const FileURL& url, double age) {
    File file;
    file.number = static_cast<int>(files_.size()) + 1;
    file.url = url;
    // No two files are born at the same moment, so that one with the inode of another is told from it.
    file.born = now() + (0.002 * file.number - age);
    writeFile(url, "picture " + std::to_string(file.number));
    stamp(url);
    places_[url.path()] = file.number;
    note(url);
    files_.push_back(file);
    return files_.back();
  }
  /// A date on the disk is cut to whole nanoseconds, and must not come before the moment itself.
  void stamp(const FileURL& url) const { setModified(url, now() + 1e-6); }
  void forget(File& file) {
    places_.erase(file.url.path());
    note(file.url);
    file.url = FileURL();
  }
  FileURL placeOnceMounted(const FileURL& url) const {
    return isMounted || url.parent() != folder ? url : mountPoint.appending(url.lastPathComponent());
  }
  void note(const FileURL& url) {
    if (url.parent() != folder) return;
    lastChanges_[placeOnceMounted(url).path()] = ++changes_;
  }
  void ask() {
    if (executor.isWorking() && onQuestion) onQuestion();
  }

  std::vector<File> files_;
  std::map<std::string, int> places_;
  int changes_ = 0;      ///< to what stands in the watched folder
  int seenChanges_ = 0;  ///< of those, what a finished scan has seen
  bool isListed_ = false;
  std::optional<int> listedChanges_;
  std::map<std::string, int> lastChanges_;  ///< by path
};

}  // namespace quillmere::testing
