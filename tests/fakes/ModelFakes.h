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
  void add(const std::string& call);
  void clear() { calls_.clear(); }
  const std::vector<std::string>& calls() const;
  size_t count(const std::string& call) const;

 private:
  std::vector<std::string> calls_;
};

/// Moves and removes real files in the test's folder; the trash is a folder beside them. Refuses what it is told to.
class FakeFileOperations final : public FileOperations {
 public:
  explicit FakeFileOperations(FileURL trash) : trashFolder_(std::move(trash)) {}

  using FileOperations::trash;
  FileOutcome trash(const FileURL& url, TrashReport& report) override;
  FileOutcome restore(const FileURL& place, const FileURL& url) override;
  using FileOperations::move;
  FileOutcome move(const FileURL& from, const FileURL& to, QString& reason) override;
  FileOutcome remove(const FileURL& url) override;
  void flush() override { ++flushes; }
  int calls() const;

  void refuse(const FileURL& url);
  void allow(const FileURL& url);

  QString failureReason = QStringLiteral("No space left on device.");
  std::map<std::string, FileOutcome> answers;  ///< by the path of the file, instead of doing it
  std::function<void(const FileURL&, const FileURL&)> onMove;
  std::function<void()> onTrash;
  bool tellsPlaceInTrash = true;
  bool refusesReplacements = false;
  int trashCalls = 0;
  int moveCalls = 0;
  int removeCalls = 0;
  int flushes = 0;
  std::vector<FileURL> trashed;

 private:
  FileOutcome moving(const FileURL& from, const FileURL& to);
  FileURL trashFolder_;
};

/// A bookmark is the path that it was made for. It resolves to that path while something is there, or to where the test
/// says that the file went.
class FakeSecurityScope final : public SecurityScopeAccess {
 public:
  explicit FakeSecurityScope(CallLog& log) : log_(log) {}

  static QByteArray bookmarkOf(const FileURL& url);

  bool start(const FileURL& url) override;
  void stop(const FileURL& url) override;
  std::optional<QByteArray> makeBookmark(const FileURL& url) override;
  std::optional<Resolution> resolve(const QByteArray& bookmark) override;

  /// Bookmarks of `from` resolve to `to`, and are stale.
  void follow(const FileURL& from, const FileURL& to);
  /// Bookmarks of `url` do not resolve.
  void lose(const FileURL& url);

  bool isOpen(const FileURL& url) const;
  int openCount() const;

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
  std::optional<QByteArray> bookmark() override;
  bool setBookmark(const QByteArray& bookmark) override;
  std::optional<QByteArray> stored;
  bool refuses = false;

 private:
  CallLog& log_;
};

class FakePresenter final : public CapturePromptPresenting {
 public:
  explicit FakePresenter(CallLog& log) : log_(log) {}
  void present(const ScreenshotItem& item, AppModel&) override;
  void hide() override;
  void expect(const FileURL& url, AppModel&) override { expected.push_back(url); }
  void focusForReview() override;
  bool isPointerEngaged() const override;

  std::vector<FileURL> expected;
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
  void watch(std::optional<FileURL> directory) override;
  void start() override;
  void scheduleScan(Duration, ScanScope) override {}
  bool includesNonCaptureImages() const override;
  void setIncludesNonCaptureImages(bool isOn) override;
  void expectArrivalsSince(std::optional<Date> moment) override;
  void noteKnown(const FileURL& url) override;
  void noteUnknown(const FileURL& url) override;
  bool hasMovedOut(const FileURL& url) const override { return movedOut.contains(url.path()); }
  /// A folder that can be opened again is told as watched, as the real monitor tells it.
  void refresh() override;

  std::optional<FileURL> watched;
  std::optional<Date> expectedSince;
  std::vector<FileURL> known;
  std::vector<FileURL> unknown;
  std::set<std::string> movedOut;  ///< paths
  int refreshes = 0;
  int starts = 0;
  bool includes = false;

 private:
  CallLog& log_;
};

class FakeFileChooser final : public FileChoosing {
 public:
  std::optional<FileURL> chooseFolder(const FolderPanelStart& start) override;
  std::optional<FileURL> chooseDestination(const SavePanelStart& start) override;
  std::optional<FileURL> answer;
  std::optional<FileURL> destination;
  std::function<void()> whileOpen;  ///< what happens while the save panel is open
  std::vector<FolderPanelStart> starts;
  std::vector<SavePanelStart> saveStarts;
};

/// A capture tool whose configuration is one text, the path of its folder.
class FakeScreenshotLocation final : public ScreenshotLocationProviding {
 public:
  std::optional<FileURL> folder() override;
  std::optional<QString> rawValue() override;
  QString rawValueOf(const FileURL& folder) override;
  bool canChange() override { return isChangeable; }
  bool tryToSetRawValue(const std::optional<QString>& to) override;

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

/// A keyboard of plain Latin letters.
class FakeKeyboardLayout final : public KeyboardLayout {
 public:
  QStringList texts(quint32 keyCode) const override;
  std::optional<quint32> keyCode(quint32 nativeScanCode) const override;
  std::map<quint32, QStringList> named{{1, {"s"}}, {11, {"b"}}, {15, {"r"}}};
  std::map<quint32, quint32> scanCodes;  ///< the key codes by what a press tells
};

class FakeHotKeys final : public HotKeyRegistering {
 public:
  Result<Token, GlobalHotKeyError> registerShortcut(const HotKeyShortcut& shortcut,
                                                    std::function<void()> action) override;
  void unregister(Token token) override;
  std::optional<GlobalHotKeyError> setSuspended(bool isSuspended) override;
  const KeyboardLayout& layout() const override { return keyboard; }
  HotKeyReach reach() const override { return reaches; }
  QString chosenByDesktop() const override { return chosen; }
  /// The person presses it, whichever program has the keyboard.
  void press(const HotKeyShortcut& shortcut) const;

  FakeKeyboardLayout keyboard;
  HotKeyReach reaches = HotKeyReach::everywhere;
  QString chosen;
  std::optional<GlobalHotKeyError> refusal;        ///< of each registration
  std::optional<GlobalHotKeyError> resumeRefusal;  ///< of each resume
  bool isSuspended = false;
  Token lastToken = 0;
  std::map<Token, std::pair<HotKeyShortcut, std::function<void()>>> registered;
};

class FakeLoginItems final : public LoginItemService {
 public:
  LoginItemStatus status() const override { return current; }
  std::optional<QString> registerItem() override;
  std::optional<QString> unregisterItem() override;
  void openSystemSettings() override { ++settingsOpened; }
  bool hasSystemSettings() const override { return hasSettings; }

  LoginItemStatus current = LoginItemStatus::notRegistered;
  LoginItemStatus afterRegistering = LoginItemStatus::enabled;
  std::optional<QString> problem;
  bool hasSettings = true;
  int settingsOpened = 0;
};

class FakePasteboard final : public Pasteboard {
 public:
  void write(const ScreenshotPasteboardItem& item) override;
  void write(const QString& text) override;
  std::vector<ScreenshotPasteboardItem> items;
  std::vector<QString> texts;
};

class FakeAnnouncer final : public Announcing {
 public:
  explicit FakeAnnouncer(CallLog& log) : log_(log) {}
  void announce(const QString& text, AnnouncementPriority priority) override;
  bool hasSaid(const QString& text) const;
  std::vector<Announcement> said;

 private:
  CallLog& log_;
};

}  // namespace quillmere::testing
