#pragma once

#include <QtCore/QCoreApplication>
#include <ctime>
#include <memory>

#include "fakes/DecodedPictures.h"
#include "fakes/FakeAnalyzer.h"
#include "fakes/ModelFakes.h"
#include "formats/ImageFile.h"
#include "foundation/ManualExecutor.h"
#include "monitor/ScreenshotInboxMonitor.h"
#include "platform/linux/LiveServices.h"
#include "platform/linux/session/RunMarker.h"
#include "support/LiveFileServices.h"

namespace quillmere::testing {

/// The program without its windows, over the home of this process: model, monitor, inotify, list, settings, bookmarks,
/// Trash and moves are real. Time moves only when told, so that nearly every moment is one of work on files.
class CrashedProgram {
 public:
  CrashedProgram() {
    model = std::make_unique<AppModel>(dependencies());
    follower_ = model->changed.connect([this](const ModelChange& change) {
      if (change.field == ModelField::items) holdUndecided();
      if (change.field == ModelField::watchFolderURL) scope_.setWatchedFolder(*model->watchFolderURL);
    });
  }
  ~CrashedProgram() {
    follower_ = {};
    model.reset();
    executor.drain();
  }

  void start() {
    model->start();
    holdUndecided();
    settle();
  }
  /// Until what has arrived is recorded.
  void settle() {
    constexpr double kSecondLook = 0.12;
    for (int look = 0; look < 4; ++look) {
      QCoreApplication::processEvents();
      executor.drain();
      executor.advance(seconds(kSecondLook));
    }
  }
  /// Longer than a file takes to become Temporary, and to be thrown away.
  void letTimePass() { executor.advance(seconds(70)); }
  Date now() const { return launched_ + advanced(); }
  /// By how much the program's time is ahead of the files'.
  double advanced() const { return std::chrono::duration<double>(executor.instant().time_since_epoch()).count(); }
  /// What the fakes remember of it.
  void forgetCalls() {
    log.clear();
    presenter.presented.clear();
    announcer_.said.clear();
    analyzer_.described.clear();
    analyzer_.read.clear();
  }
  bool isSaved() const { return model->isSaved() && !model->hasPendingSave() && !model->isReconciling(); }

  CallLog log;
  ManualExecutor executor;
  FakePresenter presenter{log};

 private:
  static Date clock() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return Date::fromUnix(now.tv_sec, static_cast<uint32_t>(now.tv_nsec));
  }
  ScanServices scanServices() {
    ScanServices services;
    services.isDataless = &CloudFiles::isDataless;
    services.isSynced = &CloudFiles::isSynced;
    services.isVolumeMounted = [this](const FileURL& url) { return mounts_.isVolumeMounted(url); };
    services.hasScreenCaptureTag = [](const FileURL&) { return true; };
    services.decodeCompletely = [](const std::vector<FileURL>& urls) {
      std::vector<bool> whole;
      for (const FileURL& url : urls) whole.push_back(ImageFile::decodesCompletely(url));
      return whole;
    };
    services.fileDates = [this](const FileURL& url) {
      const auto status = fileStatus(url);
      FileDates dates;
      if (status && status->created) dates.created = *status->created + advanced();
      return dates;
    };
    return services;
  }
  void holdUndecided() {
    std::vector<FileURL> files;
    model->items().forEach([&](const ScreenshotItem& item) {
      if (item.state != ScreenshotItem::State::permanent) files.push_back(item.url);
    });
    scope_.hold(files);
  }
  AppModelDependencies dependencies() {
    AppModelDependencies world;
    world.recordStore.fileURL = paths_.recordList;
    world.executor = &executor;
    world.defaults = &defaults_;
    world.fileOperations = &files_;
    world.securityScope = &scope_;
    world.watchFolderStore = &folderStore_;
    world.promptPresenter = &presenter;
    world.monitor = &monitor_;
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
    askFileSystem(world, mounts_);
    world.interruptedSince = marker_.interruptedSince();
    return world;
  }

  const Date launched_ = clock();
  const ApplicationPaths paths_ = ApplicationPaths::standard();
  RunMarker marker_{paths_.runMarker, paths_.recordList, launched_};
  SystemEvents systemEvents_;
  UserDefaults defaults_{paths_.settings};
  MountTable mounts_{nullptr};
  LiveFileOperations files_;
  LiveSecurityScopeAccess scope_{mounts_};
  LiveWatchFolderStore folderStore_{defaults_, mounts_};
  LiveFolderEventSource folderEvents_;
  ScreenshotInboxMonitor monitor_{executor, systemEvents_, folderEvents_, scanServices(), [this] { return now(); }};
  FakeFileChooser chooser_;
  FakeScreenshotLocation screenshotLocation_;
  FakeAnnouncer announcer_{log};
  FakeHotKeys hotKeys_;
  FakeLoginItems loginItems_;
  FakeAnalyzer analyzer_;
  Connection follower_;

 public:
  std::unique_ptr<AppModel> model;  ///< last, as it uses all of the above
};

}  // namespace quillmere::testing
