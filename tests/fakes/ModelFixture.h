#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include "fakes/FakeAnalyzer.h"
#include "fakes/FakeWindowScanner.h"
#include "fakes/ModelFakes.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere {

inline void PrintTo(const BackgroundIssue& issue, std::ostream* out) {
  *out << message(issue).toStdString() << " (" << issue.count << ")";
}

}  // namespace quillmere

namespace quillmere::testing {

using State = ScreenshotItem::State;
using Issue = BackgroundIssue::Kind;

/// A model over fakes and a temporary home. Files are real; time, access, the trash and the popup are the test's.
class ModelFixture : public ::testing::Test {
 protected:
  ModelFixture();
  /// Whatever a test did: with the model gone no access is left open.
  ~ModelFixture() override;

  // --- Before the launch ---

  void setSettings(const char* json);
  void chooseFolderBefore(const FileURL& folder);
  /// A list file of these records, newest first.
  void storeRecords(std::vector<ScreenshotItem> items);
  /// A record of a file in the watched folder, which is written too.
  ScreenshotItem storedItem(int number, std::string_view name, State state = State::pending);
  ScreenshotItem storedTemporary(int number, std::string_view name, double expiresIn);

  // --- The launch ---

  void makeModel();
  void launch();
  void launchWatching();

  AppModelDependencies dependencies();

  /// Runs what is under way in the background to its end, and with it the task.
  template <typename T>
  T finish(const Task<T>& task) {
    executor.drain();
    EXPECT_TRUE(task.isDone());
    if constexpr (!std::is_void_v<T>) return task.isDone() ? task.await_resume() : T();
  }

  // --- The world ---

  Date now() const;
  /// Time passes, on every clock.
  void advance(double bySeconds);
  /// The wall clock is set; no time passes.
  void setClock(double bySeconds);

  /// By default the real inode and size and a birth time that all files share.
  std::optional<FileIdentity> identityOf(const FileURL& url) const;
  void moveFile(const FileURL& from, const FileURL& to);
  void deleteFile(const FileURL& url);
  /// The person renames or moves a file, and its bookmark knows.
  void moveFileFollowed(const FileURL& from, const FileURL& to);
  /// The disk with the watched folder leaves. Nobody has been told yet.
  void ejectDisk();
  void connectDisk();
  void report(WatcherStatus status);
  void reportRemoval(const std::vector<FileURL>& urls);
  /// The screenshot goes to `elsewhere` under its name, and the monitor saw it move, not vanish.
  void moveElsewhere(const FileURL& shot);
  void reconcileAll();

  /// A screenshot is taken into the watched folder, and the monitor tells of it.
  UUID arrive(std::string_view name);
  UUID arriveFromElsewhere(std::string_view name);
  UUID arriveTemporary(std::string_view name, TemporaryDuration duration = TemporaryDuration::fiveMinutes);
  UUID arrivePermanent(std::string_view name);
  /// A record outside the watched folder whose file cannot be found, pending until someone decides.
  void makeUnavailable(const UUID& id);
  void makeSavingFail();
  void makeSavingWork();

  // --- What came of it ---

  ScreenshotItem item(const UUID& id) const;
  bool hasRecord(const UUID& id) const;
  State stateOf(const UUID& id) const;
  const std::vector<UUID>& queue() const;
  /// The records as they stand on the disk.
  std::vector<ScreenshotItem> savedRecords() const;
  std::optional<ScreenshotItem> savedRecord(const UUID& id) const;
  /// Saves since the last call change the list file's inode, as it is replaced whole.
  bool wasSaved();
  QJsonObject settingsOnDisk() const;
  std::optional<Issue> banner() const;
  std::optional<Date> scheduledAt(const UUID& id) const;
  bool isInTrashFolder(std::string_view name) const;
  size_t changesOf(ModelField field) const;

  static constexpr double kStart = 700000000.0;

  TemporaryFolder home;
  const FileURL shots = home.file("shots");
  const FileURL away = home.file("away");
  const FileURL elsewhere = home.file("elsewhere");
  const FileURL trash = home.file("trash");
  const FileURL transfers = home.file("transfers");
  const FileURL listFile = home.file("data").appending("Quillmere").appending("screenshots.json");
  FileURL settingsFile = home.file("settings.json");

  CallLog log;
  SystemEvents systemEvents;
  ManualExecutor executor;
  /// Saves the list. It answers at once unless it is held, so that what was decided is on the disk.
  ManualExecutor disk;
  std::unique_ptr<UserDefaults> defaults;
  FakeFileOperations files{trash};
  FakeSecurityScope scope{log};
  FakeWatchFolderStore folderStore{log};
  FakePresenter presenter{log};
  FakeMonitor monitor{log};
  FakeFileChooser chooser;
  FakeScreenshotLocation location;
  FakeAnnouncer announcer{log};
  FakeAnalyzer analyzer;
  bool keepsIdentities = true;
  FakePasteboard pasteboard;
  FakeWindowScanner scanner;
  FakeHotKeys hotKeys;
  FakeLoginItems loginItems;
  /// Until the person sets another; the standard one would be told with each screenshot.
  std::optional<HotKeyShortcut> firstShortcut;

  std::map<std::string, std::optional<FileIdentity>> identities;
  std::vector<WindowStack> windowStates;  ///< what the window system tells
  std::function<void()> onLookAtWindows;
  std::map<std::string, CaptureKind> captureKinds;
  std::set<std::string> unreachableFolders;
  std::set<std::string> dataless;
  int datalessLooks = 0;
  std::set<std::string> ubiquitous;
  std::vector<FileURL> downloads;  ///< asked for
  bool refusesDownloads = false;
  bool isVolumeMounted = true;
  std::optional<FileURL> standardFolder;
  std::optional<Date> interruptedSince;

  std::vector<QString> deletionQuestions;  ///< the files that were asked about
  bool confirmsDeletion = true;
  std::vector<FileURL> watchingQuestions;
  bool confirmsWatching = true;
  std::function<void()> onDeletionQuestion;  ///< what happens while the question is open

  std::vector<ModelChange> changes;
  std::unique_ptr<AppModel> model;

 private:
  std::shared_ptr<double> clockOffset_;
  Connection connection_;
  uint64_t lastListInode_ = 0;
  Date lastListModified_;
};

}  // namespace quillmere::testing
