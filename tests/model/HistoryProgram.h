#pragma once

#include "fakes/FakeAnalyzer.h"
#include "fakes/ModelFakes.h"
#include "model/HistoryWorld.h"

namespace quillmere::testing {

/// Moves files to the world's trash, away, and to new names, and tells the test before and after.
class HistoryFileOperations final : public FileOperations {
 public:
  explicit HistoryFileOperations(HistoryWorld& world) : world_(world) {}

  using FileOperations::trash;
  FileOutcome trash(const FileURL& url, TrashReport&) override {
    HistoryWorld::File* file = world_.at(url);
    if (!file) return FileOutcome::missing;
    if (refuses) return FileOutcome::failed;
    willDispose(*file);
    world_.move(*file, world_.freeName(world_.trash, url));
    didChange();
    return FileOutcome::done;
  }
  /// No history cuts pictures.
  FileOutcome restore(const FileURL&, const FileURL&) override { return FileOutcome::failed; }
  FileOutcome remove(const FileURL& url) override {
    HistoryWorld::File* file = world_.at(url);
    if (!file) return FileOutcome::missing;
    if (refuses) return FileOutcome::failed;
    willDispose(*file);
    world_.erase(*file);
    didChange();
    return FileOutcome::done;
  }
  using FileOperations::move;
  FileOutcome move(const FileURL& from, const FileURL& to, QString&) override {
    HistoryWorld::File* file = world_.at(from);
    if (!file) return FileOutcome::missing;
    if (fileExists(to)) return FileOutcome::destinationExists;
    if (refuses) return FileOutcome::failed;
    world_.move(*file, to);
    didMove(*file);
    didChange();
    return FileOutcome::done;
  }

  bool refuses = false;
  std::function<void(const HistoryWorld::File&)> willDispose;
  std::function<void(const HistoryWorld::File&)> didMove;
  std::function<void()> didChange;

 private:
  HistoryWorld& world_;
};

/// A bookmark of a file is its number and the place where it was; one of the folder is the place alone.
class HistoryScope final : public SecurityScopeAccess {
 public:
  explicit HistoryScope(HistoryWorld& world) : world_(world) {}

  bool start(const FileURL& url) override {
    if (!fileExists(url)) return false;
    ++open[url.path()];
    return true;
  }
  void stop(const FileURL& url) override {
    if (--open[url.path()] < 0) isOverstopped = true;
  }
  std::optional<QByteArray> makeBookmark(const FileURL& url) override {
    if (isReadableDirectory(url)) return "folder 0 " + QByteArray::fromStdString(url.path());
    const HistoryWorld::File* file = world_.at(url);
    if (!file) return std::nullopt;
    return QByteArray::number(file->number) + " " + QByteArray::number(file->bookmarkSeries) + " " +
           QByteArray::fromStdString(url.path());
  }
  std::optional<Resolution> resolve(const QByteArray& bookmark) override {
    const auto parts = bookmark.split(' ');
    const FileURL place = FileURL::fromPath(bookmark.mid(parts[0].size() + parts[1].size() + 2).toStdString());
    return parts[0] == "folder" ? resolveFolder(place) : resolveFile(parts[0].toInt(), parts[1].toInt(), place);
  }

  int openCount() const {
    int sum = 0;
    for (const auto& [path, count] : open) sum += count;
    return sum;
  }
  std::map<std::string, int> open;
  bool isOverstopped = false;

 private:
  std::optional<Resolution> resolveFolder(const FileURL& place) const {
    if (world_.isMounted && place != world_.folder) return Resolution{world_.folder, true, place};
    return Resolution{place, !world_.isMounted && isReadableDirectory(place)};
  }
  std::optional<Resolution> resolveFile(int number, int series, const FileURL& place) {
    if (world_.executor.isWorking() && world_.onQuestion) world_.onQuestion();
    const HistoryWorld::File* file = world_.find(number);
    if (file->url.isEmpty() || file->bookmarkSeries != series) return std::nullopt;
    if (file->url == place) return Resolution{place, false};
    const FileURL parent = file->url.parent();
    const bool isOnline = world_.isMounted || parent != world_.folder;
    const bool isInReach =
        world_.reach == HistoryWorld::BookmarkReach::everywhere || parent == place.parent() || parent == world_.folder;
    if (!isOnline || !isInReach) return std::nullopt;
    return Resolution{file->url, true, place};
  }
  HistoryWorld& world_;
};

/// Events of the folder, as long as it stands where it was opened.
class HistoryFolderEvents final : public FolderEventSource {
 public:
  std::unique_ptr<FolderEventWatch> open(const FileURL& folder, std::function<void(FolderEvent)> onEvent) override {
    if (!isReadableDirectory(folder)) return nullptr;
    return std::make_unique<Watch>(*this, std::move(onEvent));
  }
  void tell(FolderEvent event) {
    if (!watch_) return;
    const auto onEvent = watch_->onEvent;
    onEvent(event);
  }

 private:
  struct Watch final : FolderEventWatch {
    Watch(HistoryFolderEvents& owner, std::function<void(FolderEvent)> event)
        : source(owner), onEvent(std::move(event)) {
      source.watch_ = this;
    }
    ~Watch() override {
      if (source.watch_ == this) source.watch_ = nullptr;
    }
    HistoryFolderEvents& source;
    std::function<void(FolderEvent)> onEvent;
  };
  Watch* watch_ = nullptr;
};

/// The program over a world: the true model and the true monitor with its true scan, begun and ended as often as a
/// history asks for.
class HistoryProgram {
  HistoryWorld& world_;

 public:
  explicit HistoryProgram(HistoryWorld& world) : world_(world) {
    folderStore.stored = scope.makeBookmark(world.folder);
    disk_.answerAtOnce();
  }

  void start(std::optional<Date> interruptedSince) {
    defaults_ = std::make_unique<UserDefaults>(world_.settingsFile.displayPath());
    monitor = std::make_unique<ScreenshotInboxMonitor>(world_.executor, systemEvents, folderEvents,
                                                       world_.scanServices(), [this] { return world_.now(); });
    model = std::make_unique<AppModel>(dependencies(interruptedSince));
    startedAt = world_.now();
    model->start();
    world_.executor.drain();
  }
  /// The process ends. Nothing that was under way is finished.
  void end() {
    model.reset();
    monitor.reset();
    defaults_.reset();
    world_.executor.forgetWork();
    presenter.visible.reset();
  }
  bool isRunning() const { return model != nullptr; }
  std::vector<ScreenshotItem> savedRecords() const {
    return ScreenshotRecordStore{world_.listFile}.load(world_.now()).items;
  }
  std::vector<ScreenshotItem> records() const {
    std::vector<ScreenshotItem> items;
    model->items().forEach([&](const ScreenshotItem& item) { items.push_back(item); });
    return items;
  }

  CallLog log;
  SystemEvents systemEvents;
  HistoryFolderEvents folderEvents;
  HistoryFileOperations files{world_};
  HistoryScope scope{world_};
  FakeWatchFolderStore folderStore{log};
  FakePresenter presenter{log};
  FakeFileChooser chooser;
  FakeScreenshotLocation location;
  FakeAnnouncer announcer{log};
  FakeHotKeys hotKeys;
  FakeLoginItems loginItems;
  FakeAnalyzer analyzer;
  Date startedAt;
  std::unique_ptr<ScreenshotInboxMonitor> monitor;
  std::unique_ptr<AppModel> model;

 private:
  AppModelDependencies dependencies(std::optional<Date> interruptedSince) {
    AppModelDependencies all;
    all.recordStore.fileURL = world_.listFile;
    all.executor = &world_.executor;
    all.disk = &disk_;
    all.defaults = defaults_.get();
    all.fileOperations = &files;
    all.securityScope = &scope;
    all.watchFolderStore = &folderStore;
    all.promptPresenter = &presenter;
    all.monitor = monitor.get();
    all.fileChooser = &chooser;
    all.screenshotLocation = &location;
    all.startDownload = [](const FileURL&) { return false; };
    all.announcer = &announcer;
    all.analyzer = &analyzer;
    all.systemEvents = &systemEvents;
    all.now = [this] { return world_.now(); };
    all.timeZone = [] { return QTimeZone::utc(); };
    all.confirmDeletion = [](const QString&) { return true; };
    all.isInTrash = [this](const FileURL& url) { return world_.isInTrash(url); };
    all.fileIdentity = [this](const FileURL& url) { return world_.identityOf(url); };
    all.isFolderReachable = [this](const FileURL& url) { return world_.isFolderReachable(url); };
    all.isDataless = [this](const FileURL& url) { return world_.isEvicted(url); };
    all.isUbiquitous = [](const FileURL&) { return false; };
    all.startDownload = [](const FileURL&) { return false; };
    all.isVolumeMounted = [this](const FileURL&) { return world_.isMounted; };
    all.captureKind = [](const FileURL&) { return std::nullopt; };
    all.defaultScreenshotFolder = [] { return std::nullopt; };
    all.hotKeys = &hotKeys;
    all.loginItems = &loginItems;
    all.interruptedSince = interruptedSince;
    return all;
  }

  ManualExecutor disk_;
  std::unique_ptr<UserDefaults> defaults_;
};

}  // namespace quillmere::testing
