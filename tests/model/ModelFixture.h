#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include "foundation/ManualExecutor.h"
#include "model/FakeAnalyzer.h"
#include "model/FakeWindowScanner.h"
#include "model/ModelFakes.h"
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
  ModelFixture() {
    std::filesystem::create_directories(shots.path());
    std::filesystem::create_directories(elsewhere.path());
    clockOffset_ = std::make_shared<double>(0);
  }
  /// Whatever a test did: with the model gone no access is left open.
  ~ModelFixture() override {
    model.reset();
    EXPECT_EQ(scope.openCount(), 0);
    EXPECT_EQ(scope.starts, scope.stops);
    EXPECT_EQ(scope.stopsWithoutStart, 0);
  }

  // --- Before the launch ---

  void setSettings(const char* json) { writeFile(settingsFile, json); }
  void chooseFolderBefore(const FileURL& folder) { folderStore.stored = FakeSecurityScope::bookmarkOf(folder); }
  /// A list file of these records, newest first.
  void storeRecords(std::vector<ScreenshotItem> items) {
    ScreenshotList list(std::move(items));
    std::filesystem::create_directories(listFile.parent().path());
    ASSERT_TRUE(ScreenshotListWriter().save(list, listFile));
  }
  /// A record of a file in the watched folder, which is written too.
  ScreenshotItem storedItem(int number, std::string_view name, State state = State::pending) {
    ScreenshotItem item;
    item.id = uuid(number);
    item.url = shots.appending(name);
    writeFile(item.url, name);
    item.createdAt = now() + (number - 1000.0);
    item.state = state;
    item.fileIdentity = identityOf(item.url);
    return item;
  }
  ScreenshotItem storedTemporary(int number, std::string_view name, double expiresIn) {
    ScreenshotItem item = storedItem(number, name, State::temporary);
    item.expiresAt = now() + expiresIn;
    return item;
  }

  // --- The launch ---

  void makeModel() {
    connection_.reset();
    model.reset();
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    model = std::make_unique<AppModel>(dependencies());
    connection_ = model->changed.connect([this](const ModelChange& change) { changes.push_back(change); });
  }
  void launch() {
    makeModel();
    model->start();
    executor.drain();
  }
  void launchWatching() {
    chooseFolderBefore(shots);
    launch();
  }

  AppModelDependencies dependencies() {
    AppModelDependencies world;
    world.recordStore.fileURL = listFile;
    world.executor = &executor;
    world.defaults = defaults.get();
    world.fileOperations = &files;
    world.securityScope = &scope;
    world.watchFolderStore = &folderStore;
    world.promptPresenter = &presenter;
    world.monitor = &monitor;
    world.fileChooser = &chooser;
    world.screenshotLocation = &location;
    world.announcer = &announcer;
    world.pasteboard = &pasteboard;
    world.transferFiles = TransferFiles(transfers);
    world.scanWindows = [this](const FileURL& url) { return scanner.scan(url); };
    world.analyzer = &analyzer;
    world.systemEvents = &systemEvents;
    world.now = [this] { return now(); };
    world.timeZone = [] { return QTimeZone::utc(); };
    world.confirmDeletion = [this](const QString& fileName) {
      deletionQuestions.push_back(fileName);
      if (onDeletionQuestion) onDeletionQuestion();
      return confirmsDeletion;
    };
    world.isInTrash = [this](const FileURL& url) { return url.path().starts_with(trash.path() + "/"); };
    world.fileIdentity = [this](const FileURL& url) { return identityOf(url); };
    world.isFolderReachable = [this](const FileURL& url) {
      return !unreachableFolders.contains(url.path()) && isReadableDirectory(url);
    };
    world.isDataless = [this](const FileURL& url) {
      ++datalessLooks;
      // A placeholder stands in a folder that can be seen.
      return dataless.contains(url.path()) && fileExists(url.parent());
    };
    world.isUbiquitous = [this](const FileURL& url) { return ubiquitous.contains(url.path()); };
    world.startDownload = [this](const FileURL& url) {
      downloads.push_back(url);
      return !refusesDownloads;
    };
    world.isVolumeMounted = [this](const FileURL&) { return isVolumeMounted; };
    world.captureKind = [this](const FileURL& url) -> std::optional<CaptureKind> {
      const auto found = captureKinds.find(url.path());
      return found == captureKinds.end() ? std::nullopt : std::optional(found->second);
    };
    world.defaultScreenshotFolder = [this] { return standardFolder; };
    world.spokenReviewShortcut = [this] { return spokenShortcut; };
    world.interruptedSince = interruptedSince;
    return world;
  }

  // --- The world ---

  Date now() const {
    return Date{kStart + *clockOffset_ + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
  }
  /// Time passes, on every clock.
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }
  /// The wall clock is set; no time passes.
  void setClock(double bySeconds) { *clockOffset_ += bySeconds; }

  /// By default the real inode and size and a birth time that all files share.
  std::optional<FileIdentity> identityOf(const FileURL& url) const {
    if (const auto found = identities.find(url.path()); found != identities.end()) return found->second;
    const auto status = fileStatus(url);
    if (!status || !status->isRegular()) return std::nullopt;
    return FileIdentity{"volume", status->inode, Date{kStart - 500.25}, status->size};
  }
  void moveFile(const FileURL& from, const FileURL& to) { std::filesystem::rename(from.path(), to.path()); }
  void deleteFile(const FileURL& url) { ASSERT_TRUE(std::filesystem::remove(url.path())) << url.path(); }
  /// The person renames or moves a file, and its bookmark knows.
  void moveFileFollowed(const FileURL& from, const FileURL& to) {
    moveFile(from, to);
    scope.follow(from, to);
  }
  /// The disk with the watched folder leaves. Nobody has been told yet.
  void ejectDisk() {
    isVolumeMounted = false;
    moveFile(shots, away);
  }
  void connectDisk() {
    isVolumeMounted = true;
    moveFile(away, shots);
  }
  void report(WatcherStatus status) {
    monitor.onStatusChange(status);
    executor.drain();
  }
  void reportRemoval(const std::vector<FileURL>& urls) {
    monitor.onRemoval(urls);
    executor.drain();
  }
  void reconcileAll() {
    model->reconcile({});
    executor.drain();
  }

  /// A screenshot is taken into the watched folder, and the monitor tells of it.
  UUID arrive(std::string_view name) {
    const FileURL url = shots.appending(name);
    writeFile(url, name);
    monitor.onScreenshot(url);
    return model->items()[0].id;
  }
  UUID arriveFromElsewhere(std::string_view name) {
    const FileURL url = shots.appending(name);
    writeFile(url, name);
    monitor.onArrivedScreenshot(url);
    return model->items()[0].id;
  }
  UUID arriveTemporary(std::string_view name, TemporaryDuration duration = TemporaryDuration::fiveMinutes) {
    const UUID id = arrive(name);
    model->markTemporary(id, duration).detach();
    return id;
  }
  UUID arrivePermanent(std::string_view name) {
    const UUID id = arrive(name);
    model->keepPrompt(id).detach();
    return id;
  }
  /// A record outside the watched folder whose file cannot be found, pending until someone decides.
  void makeUnavailable(const UUID& id) {
    const FileURL url = item(id).url;
    unreachableFolders.insert(url.parent().path());
    const FileURL hidden = home.file("hidden " + url.lastPathComponent());
    moveFile(url, hidden);
    model->reconcile({.ids = UUIDSet{id}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
    executor.drain();
    ASSERT_TRUE(model->unavailableItemIDs->contains(id));
  }
  void makeSavingFail() {
    std::filesystem::remove_all(listFile.parent().path());
    std::filesystem::create_directories(listFile.parent().parent().path());
    writeFile(listFile.parent(), "a file where the folder should be");
  }
  void makeSavingWork() { std::filesystem::remove(listFile.parent().path()); }

  // --- What came of it ---

  ScreenshotItem item(const UUID& id) const {
    const ScreenshotItem* found = model->items().find(id);
    EXPECT_TRUE(found) << "no record " << uuidText(id);
    return found ? *found : ScreenshotItem();
  }
  bool hasRecord(const UUID& id) const { return model->items().find(id) != nullptr; }
  State stateOf(const UUID& id) const { return item(id).state; }
  const std::vector<UUID>& queue() const { return *model->prompts().queue; }
  /// The records as they stand on the disk.
  std::vector<ScreenshotItem> savedRecords() const {
    return fileExists(listFile) ? ScreenshotRecordStore{listFile}.load(now()).items : std::vector<ScreenshotItem>();
  }
  std::optional<ScreenshotItem> savedRecord(const UUID& id) const {
    for (const ScreenshotItem& record : savedRecords()) {
      if (record.id == id) return record;
    }
    return std::nullopt;
  }
  /// Saves since the last call change the list file's inode, as it is replaced whole.
  bool wasSaved() {
    const auto status = fileStatus(listFile);
    const uint64_t inode = status ? status->inode : 0;
    const Date modified = status ? status->modified : Date{};
    const bool changed = inode != lastListInode_ || modified != lastListModified_;
    lastListInode_ = inode;
    lastListModified_ = modified;
    return changed;
  }
  QJsonObject settingsOnDisk() const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(readBytes(settingsFile))).object();
  }
  std::optional<Issue> banner() const {
    return *model->backgroundIssue ? std::optional((*model->backgroundIssue)->kind) : std::nullopt;
  }
  std::optional<Date> scheduledAt(const UUID& id) const {
    const auto& entries = model->expirationScheduler().expirations();
    const auto found = entries.find(id);
    return found == entries.end() ? std::nullopt : std::optional(found->second);
  }
  bool isInTrashFolder(std::string_view name) const { return fileExists(trash.appending(name)); }
  size_t changesOf(ModelField field) const {
    return static_cast<size_t>(
        std::count_if(changes.begin(), changes.end(), [&](const ModelChange& one) { return one.field == field; }));
  }

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
  FakePasteboard pasteboard;
  FakeWindowScanner scanner;

  std::map<std::string, std::optional<FileIdentity>> identities;
  std::map<std::string, CaptureKind> captureKinds;
  std::set<std::string> unreachableFolders;
  std::set<std::string> dataless;
  int datalessLooks = 0;
  std::set<std::string> ubiquitous;
  std::vector<FileURL> downloads;  ///< asked for
  bool refusesDownloads = false;
  bool isVolumeMounted = true;
  std::optional<FileURL> standardFolder;
  std::optional<QString> spokenShortcut;
  std::optional<Date> interruptedSince;

  std::vector<QString> deletionQuestions;  ///< the files that were asked about
  bool confirmsDeletion = true;
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
