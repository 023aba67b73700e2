#include "platform/linux/LiveServices.h"

#include <unistd.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <cstdlib>
#include <utility>

#include "foundation/FileStatus.h"
#include "model/AppModel.h"
#include "model/Settings.h"
#include "platform/linux/ServerOwner.h"
#include "platform/linux/capture/CaptureMarks.h"
#include "platform/linux/capture/ScreenCaptureAttributes.h"
#include "platform/linux/files/CloudFiles.h"
#include "platform/linux/files/LiveFileIdentity.h"
#include "platform/linux/login/LiveLoginItem.h"
#include "reading/FailedPictures.h"

namespace quillmere {
namespace {

FileDates fileDates(const FileURL& url) {
  const auto status = fileStatus(url);
  // No Linux file system keeps when a file was added to its folder.
  return {status ? status->created : std::nullopt, std::nullopt, CaptureMarks::captureDate(url)};
}

/// What would cost too much to decode is a capture as far as its head tells: its person is asked, without its picture.
bool isWhole(const std::optional<PictureError>& failure) {
  return !failure || failure == PictureError::tooCostly;
}

/// Which are whole pictures. It is asked at every look; what failed is not decoded again before it changes.
std::vector<bool> wholeOnes(const std::vector<FileURL>& urls, ReaderPool& readers, FailedPictures& failed) {
  std::vector<bool> areWhole(urls.size());
  std::vector<size_t> places;
  std::vector<FileURL> asked;
  std::vector<std::optional<FileStatus>> seen;
  for (size_t i = 0; i < urls.size(); ++i) {
    if (const auto failure = failed.find(urls[i])) {
      areWhole[i] = isWhole(failure);
      continue;
    }
    places.push_back(i);
    asked.push_back(urls[i]);
    seen.push_back(fileStatus(urls[i]));
  }
  const auto failures = readers.failuresOf(asked);
  for (size_t i = 0; i < asked.size(); ++i) {
    areWhole[places[i]] = isWhole(failures[i]);
    if (failures[i]) failed.keep(asked[i], seen[i], *failures[i]);
  }
  return areWhole;
}

std::optional<FileURL> defaultScreenshotFolder() {
  const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  for (const QString& folder : {pictures + QStringLiteral("/Screenshots"), pictures, QDir::homePath()}) {
    if (QDir(folder).exists()) return FileURL::fromPath(folder);
  }
  return std::nullopt;
}

}  // namespace

Date systemNow() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return Date::fromUnix(now.tv_sec, static_cast<uint32_t>(now.tv_nsec));
}

ApplicationPaths ApplicationPaths::standard() {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  const QString support = data + QStringLiteral("/Quillmere");
  QDir().mkpath(support);
  QDir().mkpath(config + QStringLiteral("/Quillmere"));
  // What screenshots say is nobody else's business.
  for (const QString& folder : {support, config + QStringLiteral("/Quillmere")}) {
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }
  ApplicationPaths paths;
  paths.support = FileURL::fromPath(support);
  paths.settings = config + QStringLiteral("/Quillmere/settings.json");
  paths.recordList = paths.support.appending("screenshots.json");
  paths.runMarker = paths.support.appending("running");
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  paths.transfers = FileURL::fromPath(cache + QStringLiteral("/Quillmere/Transfers"));
  paths.thumbnails = FileURL::fromPath(cache + QStringLiteral("/thumbnails"));
  return paths;
}

LiveServices::LiveServices(const ApplicationPaths& paths)
    : defaults(paths.settings),
      mounts(&systemEvents),
      pictures(std::make_shared<ReaderPool>(
          executor, ReaderPool::programBesides(FileURL::fromPath(QCoreApplication::applicationDirPath())))),
      thumbnails(std::make_shared<LiveSharedThumbnails>(paths.thumbnails, pictures, &systemNow)),
      fileOperations([this](const FileURL& place) { forgetThumbnails(place); }),
      securityScope(mounts),
      watchFolderStore(defaults, mounts),
      screenshotOptions(executor),
      announcer(executor),
      sharing(executor, defaults, QDBusConnection::sessionBus()),
      fileManager(executor, QDBusConnection::sessionBus()),
      help(executor, QDBusConnection::sessionBus(),
           HelpPages::besides(FileURL::fromPath(QCoreApplication::applicationDirPath())), LiveHelp::ofThisProcess()),
      languageModel(executor, pictures,
                    ModelServerPlaces{.configured = [this] { return Settings::storedModelAddress(defaults); },
                                      .listener = &serverListener,
                                      .isAllowed =
                                          [this](const QString& key) {
                                            return Settings::storedForeignModelServers(defaults).contains(key);
                                          }},
                    &systemNow),
      analyzer(executor, languageModel, pictures, &CloudFiles::isDataless),
      monitor(executor, systemEvents, folderEvents, scanServices(), &systemNow),
      loginItems(liveLoginItem(QDBusConnection::sessionBus(), defaults)) {
  defaults.writeInBackground(executor, disk);
}

/// What a disk holds for longer goes with the process, as in a crash: the next start finds the run interrupted.
LiveServices::~LiveServices() {
  constexpr auto kLongestEnd = std::chrono::seconds(30);
  pictures->end();
  // What touches files may leave the other something to do.
  const QDeadlineTimer end(kLongestEnd);
  if (disk.finishBackground(end) && executor.finishBackground(end)) return;
  qWarning("A disk does not answer; Quillmere ends without it");
  ::_exit(EXIT_FAILURE);
}

ScanServices LiveServices::scanServices() {
  ScanServices services;
  services.isDataless = &CloudFiles::isDataless;
  services.isSynced = &CloudFiles::isSynced;
  services.isVolumeMounted = [this](const FileURL& url) { return mounts.isVolumeMounted(url); };
  services.hasScreenCaptureTag = &hasScreenCaptureTag;
  services.decodeCompletely = [readers = pictures, failed = std::make_shared<FailedPictures>()](const auto& urls) {
    return wholeOnes(urls, *readers, *failed);
  };
  services.fileDates = &fileDates;
  return services;
}

void LiveServices::holdUndecided(const AppModel& model) {
  isHoldDue_ = true;
  if (std::exchange(isHolding_, true)) return;
  executor.post([this, &model] { holdNow(model); });
}

/// In the background, and with a pause after it: in a burst there are others at each turn of the loop.
void LiveServices::holdNow(const AppModel& model) {
  static constexpr Duration kPause = std::chrono::milliseconds(250);
  isHoldDue_ = false;
  std::vector<FileURL> files;
  model.items().forEach([&](const ScreenshotItem& item) {
    const bool isUndecided = item.state != ScreenshotItem::State::permanent;
    if (isUndecided && files.size() < HeldFiles::kMost) files.push_back(item.url);
  });
  const auto paused = [this, &model](bool isOver) {
    isHolding_ = false;
    if (isOver && isHoldDue_) holdUndecided(model);
  };
  executor.runInBackground([this, files = std::move(files)] { securityScope.hold(files); },
                           [this, paused] { executor.startDelay(kPause, paused); });
}

void LiveServices::forgetThumbnails(const FileURL& place) {
  executor.runInBackground([kept = thumbnails, place] { kept->forget(place); }, [] {});
}

bool LiveServices::isFolderReachable(const FileURL& url) const {
  return isReadableDirectory(url) && mounts.isVolumeMounted(url);
}

AppModelDependencies LiveServices::dependencies(const ApplicationPaths& paths) {
  AppModelDependencies dependencies;
  dependencies.recordStore.fileURL = paths.recordList;
  dependencies.executor = &executor;
  dependencies.disk = &disk;
  dependencies.defaults = &defaults;
  dependencies.fileOperations = &fileOperations;
  dependencies.securityScope = &securityScope;
  dependencies.watchFolderStore = &watchFolderStore;
  dependencies.screenshotLocation = &screenshotLocation;
  dependencies.monitor = &monitor;
  dependencies.announcer = &announcer;
  dependencies.pasteboard = &pasteboard;
  dependencies.transferFiles = TransferFiles(paths.transfers);
  dependencies.pictures = pictures;
  dependencies.scanWindows = [this](const FileURL& url, const std::optional<KnownWindows>& known) {
    return ImageOperations::scanWindows(executor, pictures, url, known, &CloudFiles::isDataless);
  };
  dependencies.windowStates = [this] { return windows->states(); };
  dependencies.lookAtWindows = [this] { windows->lookAgain(); };
  dependencies.analyzer = &analyzer;
  dependencies.systemEvents = &systemEvents;
  dependencies.now = &systemNow;
  dependencies.timeZone = [] { return QTimeZone::systemTimeZone(); };
  dependencies.isInTrash = [this](const FileURL& url) { return isInTrash(url, mounts); };
  dependencies.fileIdentity = [this](const FileURL& url) { return liveFileIdentity(url, mounts); };
  dependencies.keepsIdentities = [this](const FileURL& folder) { return keepsIdentities(folder, mounts); };
  dependencies.isFolderReachable = [this](const FileURL& url) { return isFolderReachable(url); };
  dependencies.isDataless = &CloudFiles::isDataless;
  dependencies.isUbiquitous = [](const FileURL& url) { return CloudFiles::isSynced(url.parent()); };
  dependencies.startDownload = &CloudFiles::startDownload;
  dependencies.isVolumeMounted = [this](const FileURL& url) { return mounts.isVolumeMounted(url); };
  dependencies.captureKind = &ScreenCaptureAttributes::captureKind;
  dependencies.defaultScreenshotFolder = &defaultScreenshotFolder;
  dependencies.hotKeys = hotKeys.get();
  dependencies.loginItems = loginItems.get();
  return dependencies;
}

}  // namespace quillmere
