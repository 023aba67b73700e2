#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundation/FileStatus.h"
#include "model/AppModel.h"

namespace quillmere::testing {

/// What was called, in order, over all fakes of one test.
class CallLog {
 public:
  void add(const std::string& call) { calls_.push_back(call); }
  void clear() { calls_.clear(); }
  const std::vector<std::string>& calls() const { return calls_; }
  size_t count(const std::string& call) const {
    return static_cast<size_t>(std::count(calls_.begin(), calls_.end(), call));
  }

 private:
  std::vector<std::string> calls_;
};

/// Moves and removes real files in the test's folder; the trash is a folder beside them. Refuses what it is told to.
class FakeFileOperations final : public FileOperations {
 public:
  explicit FakeFileOperations(FileURL trash) : trashFolder_(std::move(trash)) {}

  using FileOperations::trash;
  FileOutcome trash(const FileURL& url, TrashReport& report) override {
    ++trashCalls;
    trashed.push_back(url);
    if (onTrash) onTrash();
    std::filesystem::create_directories(trashFolder_.path());
    const FileURL place = trashFolder_.appending(url.lastPathComponent());
    const FileOutcome outcome = moving(url, place);
    report.reason = failureReason;
    if (outcome == FileOutcome::done && tellsPlaceInTrash) report.place = place;
    return outcome;
  }
  FileOutcome restore(const FileURL& place, const FileURL& url) override { return moving(place, url); }
  using FileOperations::move;
  FileOutcome move(const FileURL& from, const FileURL& to, QString& reason) override {
    ++moveCalls;
    if (onMove) onMove(from, to);
    reason = failureReason;
    if (refusesReplacements && from.lastPathComponent().starts_with(".quillmere-replacing-"))
      return FileOutcome::failed;
    return moving(from, to);
  }
  FileOutcome remove(const FileURL& url) override {
    ++removeCalls;
    if (const auto answer = answers.find(url.path()); answer != answers.end()) return answer->second;
    return std::filesystem::remove(url.path()) ? FileOutcome::done : FileOutcome::missing;
  }
  int calls() const { return trashCalls + moveCalls + removeCalls; }

  void refuse(const FileURL& url) { answers[url.path()] = FileOutcome::failed; }
  void allow(const FileURL& url) { answers.erase(url.path()); }

  QString failureReason = QStringLiteral("No space left on device.");
  std::map<std::string, FileOutcome> answers;  ///< by the path of the file, instead of doing it
  std::function<void(const FileURL&, const FileURL&)> onMove;
  std::function<void()> onTrash;
  bool tellsPlaceInTrash = true;
  bool refusesReplacements = false;
  int trashCalls = 0;
  int moveCalls = 0;
  int removeCalls = 0;
  std::vector<FileURL> trashed;

 private:
  FileOutcome moving(const FileURL& from, const FileURL& to) {
    if (const auto answer = answers.find(from.path()); answer != answers.end()) {
      // What is said to be missing has vanished.
      if (answer->second == FileOutcome::missing) std::filesystem::remove(from.path());
      return answer->second;
    }
    if (!fileExists(from)) return FileOutcome::missing;
    if (fileExists(to)) return FileOutcome::destinationExists;
    std::filesystem::rename(from.path(), to.path());
    return FileOutcome::done;
  }
  FileURL trashFolder_;
};

/// A bookmark is the path that it was made for. It resolves to that path while something is there, or to where the test
/// says that the file went.
class FakeSecurityScope final : public SecurityScopeAccess {
 public:
  explicit FakeSecurityScope(CallLog& log) : log_(log) {}

  static QByteArray bookmarkOf(const FileURL& url) { return "bookmark of " + QByteArray::fromStdString(url.path()); }

  bool start(const FileURL& url) override {
    if (refusesAccess.contains(url.path()) || !fileExists(url)) return false;
    ++starts;
    ++open[url.path()];
    log_.add("start access " + url.lastPathComponent());
    return true;
  }
  void stop(const FileURL& url) override {
    ++stops;
    if (--open[url.path()] < 0) ++stopsWithoutStart;
    log_.add("stop access " + url.lastPathComponent());
  }
  std::optional<QByteArray> makeBookmark(const FileURL& url) override {
    ++made;
    log_.add("make bookmark " + url.lastPathComponent());
    if (refusesBookmarks || refusedBookmarks.contains(url.path())) return std::nullopt;
    return bookmarkOf(url);
  }
  std::optional<Resolution> resolve(const QByteArray& bookmark) override {
    ++resolved;
    if (const auto place = places.find(bookmark); place != places.end()) return place->second;
    const FileURL url = FileURL::fromPath(bookmark.mid(12).toStdString());
    if (!fileExists(url)) return std::nullopt;
    return Resolution{url, false};
  }

  /// Bookmarks of `from` resolve to `to`, and are stale.
  void follow(const FileURL& from, const FileURL& to) { places[bookmarkOf(from)] = Resolution{to, true, from}; }
  /// Bookmarks of `url` do not resolve.
  void lose(const FileURL& url) { places[bookmarkOf(url)] = std::nullopt; }

  bool isOpen(const FileURL& url) const {
    const auto found = open.find(url.path());
    return found != open.end() && found->second > 0;
  }
  int openCount() const {
    int sum = 0;
    for (const auto& [path, count] : open) sum += count;
    return sum;
  }

  std::map<QByteArray, std::optional<Resolution>> places;
  std::set<std::string> refusesAccess;
  std::set<std::string> refusedBookmarks;
  bool refusesBookmarks = false;
  std::map<std::string, int> open;
  int starts = 0;
  int stops = 0;
  int stopsWithoutStart = 0;
  int made = 0;
  int resolved = 0;

 private:
  CallLog& log_;
};

class FakeWatchFolderStore final : public WatchFolderStore {
 public:
  explicit FakeWatchFolderStore(CallLog& log) : log_(log) {}
  std::optional<QByteArray> bookmark() override {
    log_.add("read folder bookmark");
    return stored;
  }
  void setBookmark(const QByteArray& bookmark) override {
    log_.add("store folder bookmark");
    stored = bookmark;
  }
  std::optional<QByteArray> stored;

 private:
  CallLog& log_;
};

class FakePresenter final : public CapturePromptPresenting {
 public:
  explicit FakePresenter(CallLog& log) : log_(log) {}
  void present(const ScreenshotItem& item, AppModel&) override {
    log_.add("present " + item.url.lastPathComponent());
    presented.push_back(item.id);
    visible = item.id;
  }
  void hide() override {
    log_.add("hide");
    ++hides;
    visible.reset();
  }
  void focusForReview() override {
    log_.add("focus");
    ++focuses;
  }
  bool isPointerEngaged() const override {
    if (onPointerAsked) onPointerAsked();
    return isEngaged;
  }

  std::vector<UUID> presented;
  std::optional<UUID> visible;
  int hides = 0;
  int focuses = 0;
  bool isEngaged = false;
  std::function<void()> onPointerAsked;

 private:
  CallLog& log_;
};

class FakeMonitor final : public ScreenshotMonitoring {
 public:
  explicit FakeMonitor(CallLog& log) : log_(log) {}
  void watch(std::optional<FileURL> directory) override {
    log_.add("watch " + (directory ? directory->lastPathComponent() : std::string("nothing")));
    watched = std::move(directory);
  }
  void start() override {
    log_.add("start monitor");
    ++starts;
  }
  void scheduleScan(Duration, ScanScope) override {}
  bool includesNonCaptureImages() const override { return includes; }
  void setIncludesNonCaptureImages(bool isOn) override {
    log_.add(isOn ? "include other images" : "captures only");
    includes = isOn;
  }
  void expectArrivalsSince(std::optional<Date> moment) override {
    if (moment) log_.add("expect arrivals");
    expectedSince = moment;
  }
  void noteKnown(const FileURL& url) override { known.push_back(url); }
  void noteUnknown(const FileURL& url) override { unknown.push_back(url); }
  /// A folder that can be opened again is told as watched, as the real monitor tells it.
  void refresh() override {
    ++refreshes;
    if (watched && isReadableDirectory(*watched) && onStatusChange) onStatusChange(WatcherStatus::watching);
  }

  std::optional<FileURL> watched;
  std::optional<Date> expectedSince;
  std::vector<FileURL> known;
  std::vector<FileURL> unknown;
  int refreshes = 0;
  int starts = 0;
  bool includes = false;

 private:
  CallLog& log_;
};

class FakeFileChooser final : public FileChoosing {
 public:
  std::optional<FileURL> chooseFolder(const FolderPanelStart& start) override {
    starts.push_back(start);
    return answer;
  }
  std::optional<FileURL> chooseDestination(const SavePanelStart& start) override {
    saveStarts.push_back(start);
    if (whileOpen) whileOpen();
    return destination;
  }
  std::optional<FileURL> answer;
  std::optional<FileURL> destination;
  std::function<void()> whileOpen;  ///< what happens while the save panel is open
  std::vector<FolderPanelStart> starts;
  std::vector<SavePanelStart> saveStarts;
};

/// A capture tool whose configuration is one text, the path of its folder.
class FakeScreenshotLocation final : public ScreenshotLocationProviding {
 public:
  std::optional<FileURL> folder() override {
    ++reads;
    return value ? std::optional(FileURL::fromPath(*value)) : standard;
  }
  std::optional<QString> rawValue() override { return value; }
  QString rawValueOf(const FileURL& folder) override { return folder.displayPath(); }
  bool canChange() override { return isChangeable; }
  bool tryToSetRawValue(const std::optional<QString>& to) override {
    ++writes;
    if (refuses) return false;
    if (!ignores) value = to;
    return true;
  }

  std::optional<QString> value;
  std::optional<FileURL> standard;
  bool isChangeable = true;
  bool refuses = false;
  bool ignores = false;  ///< takes the change and goes on as before
  int reads = 0;
  int writes = 0;
};

struct Announcement {
  QString text;
  AnnouncementPriority priority;
  bool operator==(const Announcement&) const = default;
};
inline void PrintTo(const Announcement& announcement, std::ostream* out) {
  *out << (announcement.priority == AnnouncementPriority::high ? "high: " : "low: ") << announcement.text.toStdString();
}

class FakePasteboard final : public Pasteboard {
 public:
  void write(const ScreenshotPasteboardItem& item) override { items.push_back(item); }
  void write(const QString& text) override { texts.push_back(text); }
  std::vector<ScreenshotPasteboardItem> items;
  std::vector<QString> texts;
};

class FakeAnnouncer final : public Announcing {
 public:
  explicit FakeAnnouncer(CallLog& log) : log_(log) {}
  void announce(const QString& text, AnnouncementPriority priority) override {
    log_.add("announce");
    said.push_back({text, priority});
  }
  bool hasSaid(const QString& text) const {
    return std::any_of(said.begin(), said.end(), [&](const Announcement& one) { return one.text == text; });
  }
  std::vector<Announcement> said;

 private:
  CallLog& log_;
};

}  // namespace quillmere::testing
