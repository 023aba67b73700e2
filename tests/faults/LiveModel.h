#pragma once

#include <gtest/gtest.h>
#include <QtCore/QByteArray>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fakes/DecodedPictures.h"
#include "fakes/FakeAnalyzer.h"
#include "fakes/ModelFakes.h"
#include "foundation/FileStatus.h"
#include "foundation/ManualExecutor.h"
#include "platform/linux/files/LiveFileOperations.h"
#include "platform/linux/files/LiveFolderEventSource.h"
#include "platform/linux/files/LiveSecurityScopeAccess.h"
#include "platform/linux/files/MountTable.h"
#include "records/ScreenshotListWriter.h"
#include "records/ScreenshotRecordStore.h"
#include "support/EventLoop.h"
#include "support/FakeScanServices.h"
#include "support/Files.h"
#include "support/LiveFileServices.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// The home of this test program. GIO reads where the Trash is once a process, so the Trash is shared by all tests of
/// it and emptied for each.
inline FileURL privateHome() {
  return FileURL::fromPath(std::getenv("HOME"));
}
inline FileURL homeTrash() {
  return FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("Trash");
}

/// One screenshot among two others, with everything of the file system real: the operations, bookmarks, identities,
/// mounts, the events of the folder and the list. Time and the popup are the test's.
class LiveModel {
 public:
  using State = ScreenshotItem::State;
  static constexpr const char* kOldName = "Screenshot 1.png";
  static constexpr const char* kNewName = "Invoice.png";
  static constexpr double kLifetime = 300;

  /// Writes the files and the list; launches the model, which reconciles and saves.
  explicit LiveModel(State state) : LiveModel(state, std::nullopt) {}
  /// The same in a folder that is there already; it is watched by the real monitor, which `tellOfMounts` makes look.
  LiveModel(State state, const FileURL& folder) : LiveModel(state, std::optional(folder)) {}
  ~LiveModel() { model.reset(); }

  /// The program has ended.
  void quit() {
    model.reset();
    watch_.reset();
    executor.drain();  // what is under way in the background uses the services
    presenter.visible.reset();
  }
  /// A fresh run of the program over what stands on the disk.
  void launch() {
    quit();
    mounts_ = std::make_unique<MountTable>(nullptr);
    scope_ = std::make_unique<LiveSecurityScopeAccess>(*mounts_);
    folderStore_ = std::make_unique<LiveWatchFolderStore>(defaults_, *mounts_);
    if (isWatching_) watch_ = makeWatch();
    model = std::make_unique<AppModel>(dependencies());
    model->start();
    executor.drain();
  }
  /// Runs what is under way in the background to its end, and with it the task.
  template <typename T>
  void finish(const Task<T>& task) {
    executor.drain();
    EXPECT_TRUE(task.isDone());
  }
  /// What the kernel has told of the folder until now is heard.
  void hearEvents() {
    QCoreApplication::processEvents();
    executor.drain();
  }
  void advance(double bySeconds) { executor.advance(seconds(bySeconds)); }
  void hold(const std::vector<FileURL>& files) { scope_->hold(files); }
  void tellOfMounts() { systemEvents_.volumesDidChange(); }
  void tellOfWaking() { systemEvents_.didWake(); }
  Date now() const {
    return Date{700000000.0 + clockOffset +
                std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
  }

  static std::string bytesOf(int number) {
    return "picture " + std::to_string(number) + " " + std::string(20'000, static_cast<char>('a' + number));
  }
  const ScreenshotItem* record() const { return model->items().find(id); }
  std::vector<ScreenshotItem> records() const {
    std::vector<ScreenshotItem> all;
    model->items().forEach([&](const ScreenshotItem& item) { all.push_back(item); });
    return all;
  }
  /// What the list on the disk says; none when it cannot be read whole.
  std::optional<std::vector<ScreenshotItem>> savedRecords() const {
    auto bytes = readFile(listFile);
    if (!bytes) return std::nullopt;
    auto list = decodeList(*bytes);
    if (!list || list->dropped > 0) return std::nullopt;
    return std::move(list->items);
  }
  std::optional<BackgroundIssue::Kind> banner() const {
    return *model->backgroundIssue ? std::optional((*model->backgroundIssue)->kind) : std::nullopt;
  }

  double clockOffset = 0;  ///< seconds in which nothing runs
  const UUID id = uuid(1);
  TemporaryFolder home{privateHome().path()};
  const FileURL shots;
  const FileURL listFile = home.file("support").appending("screenshots.json");
  const FileURL oldPlace = shots.appending(kOldName);
  const FileURL newPlace = shots.appending(kNewName);

  CallLog log;
  ManualExecutor executor;
  FakePresenter presenter{log};

 private:
  LiveModel(State state, const std::optional<FileURL>& folder)
      : shots(folder.value_or(home.file("shots"))), isWatching_(folder) {
    disk_.answerAtOnce();
    std::filesystem::remove_all(homeTrash().path());
    std::filesystem::create_directory(shots.path());
    std::filesystem::create_directory(listFile.parent().path());
    std::vector<ScreenshotItem> records;
    for (const int number : {3, 1, 2}) {
      ScreenshotItem record = bareItem(number);
      record.url = shots.appending("Screenshot " + std::to_string(number) + ".png");
      writeFile(record.url, bytesOf(number));
      record.createdAt = now() + -60;
      record.state = number == 1 ? state : State::permanent;
      if (record.state == State::temporary) record.expiresAt = now() + kLifetime;
      record.imageDescription = QByteArray("An invoice");
      record.suggestedName = QByteArray("Invoice");
      record.fileIdentity = liveFileIdentity(record.url, *mounts_);
      record.fileBookmark = scope_->makeBookmark(record.url);
      records.push_back(std::move(record));
    }
    ScreenshotList list(std::move(records));
    EXPECT_TRUE(ScreenshotListWriter().save(list, listFile));
    LiveWatchFolderStore(defaults_, *mounts_).setBookmark(*scope_->makeBookmark(shots));
    launch();
    // From the second save on records are copied out of the last one's file.
    model->saveNow();
  }
  std::unique_ptr<ScreenshotInboxMonitor> makeWatch() {
    ScanServices services = scanServices_.services();
    services.isVolumeMounted = [this](const FileURL& url) { return mounts_->isVolumeMounted(url); };
    return std::make_unique<ScreenshotInboxMonitor>(executor, systemEvents_, folderEvents_, std::move(services),
                                                    [this] { return now(); });
  }
  AppModelDependencies dependencies() {
    AppModelDependencies world;
    world.recordStore.fileURL = listFile;
    world.executor = &executor;
    world.disk = &disk_;
    world.defaults = &defaults_;
    world.fileOperations = &files_;
    world.securityScope = scope_.get();
    world.watchFolderStore = folderStore_.get();
    world.promptPresenter = &presenter;
    world.monitor = watch_ ? static_cast<ScreenshotMonitoring*>(watch_.get()) : &monitor_;
    world.fileChooser = &chooser_;
    world.screenshotLocation = &screenshotLocation_;
    world.announcer = &announcer_;
    world.hotKeys = &hotKeys_;
    world.loginItems = &loginItems_;
    world.pictures = decodedPictures();
    world.analyzer = &analyzer_;
    world.systemEvents = &systemEvents_;
    world.now = [this] { return now(); };
    world.timeZone = [] { return QTimeZone::utc(); };
    askFileSystem(world, *mounts_);
    return world;
  }

  ManualExecutor disk_;
  SystemEvents systemEvents_;
  UserDefaults defaults_{home.file("settings.json").displayPath()};
  std::unique_ptr<MountTable> mounts_ = std::make_unique<MountTable>(nullptr);
  LiveFileOperations files_;
  std::unique_ptr<LiveSecurityScopeAccess> scope_ = std::make_unique<LiveSecurityScopeAccess>(*mounts_);
  std::unique_ptr<LiveWatchFolderStore> folderStore_;
  const bool isWatching_;
  FakeMonitor monitor_{log};
  FakeScanServices scanServices_;
  LiveFolderEventSource folderEvents_;
  std::unique_ptr<ScreenshotInboxMonitor> watch_;
  FakeFileChooser chooser_;
  FakeScreenshotLocation screenshotLocation_;
  FakeAnnouncer announcer_{log};
  FakeHotKeys hotKeys_;
  FakeLoginItems loginItems_;
  FakeAnalyzer analyzer_;

 public:
  std::unique_ptr<AppModel> model;  ///< last, as it uses all of the above
};

}  // namespace quillmere::testing
