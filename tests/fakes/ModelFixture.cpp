#include "fakes/ModelFixture.h"

#include "fakes/DecodedPictures.h"

namespace quillmere::testing {
namespace {

const QString kShortcutKey = QStringLiteral("quillmere.review-shortcut");

}  // namespace

ModelFixture::ModelFixture() {
  std::filesystem::create_directories(shots.path());
  std::filesystem::create_directories(elsewhere.path());
  clockOffset_ = std::make_shared<double>(0);
  disk.answerAtOnce();
}

ModelFixture::~ModelFixture() {
  model.reset();
  EXPECT_EQ(scope.openCount(), 0);
  EXPECT_EQ(scope.starts, scope.stops);
  EXPECT_EQ(scope.stopsWithoutStart, 0);
}

void ModelFixture::setSettings(const char* json) {
  writeFile(settingsFile, json);
}

void ModelFixture::chooseFolderBefore(const FileURL& folder) {
  folderStore.stored = FakeSecurityScope::bookmarkOf(folder);
}

void ModelFixture::storeRecords(std::vector<ScreenshotItem> items) {
  ScreenshotList list(std::move(items));
  std::filesystem::create_directories(listFile.parent().path());
  ASSERT_TRUE(ScreenshotListWriter().save(list, listFile));
}

ScreenshotItem ModelFixture::storedItem(int number, std::string_view name, State state) {
  ScreenshotItem item;
  item.id = uuid(number);
  item.url = shots.appending(name);
  writeFile(item.url, name);
  item.createdAt = now() + (number - 1000.0);
  item.state = state;
  item.fileIdentity = identityOf(item.url);
  return item;
}

ScreenshotItem ModelFixture::storedTemporary(int number, std::string_view name, double expiresIn) {
  ScreenshotItem item = storedItem(number, name, State::temporary);
  item.expiresAt = now() + expiresIn;
  return item;
}

void ModelFixture::makeModel() {
  connection_.reset();
  model.reset();
  defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
  if (!defaults->data(kShortcutKey)) defaults->set(kShortcutKey, StoredShortcut::encode(firstShortcut));
  model = std::make_unique<AppModel>(dependencies());
  connection_ = model->changed.connect([this](const ModelChange& change) { changes.push_back(change); });
}

void ModelFixture::launch() {
  makeModel();
  model->start();
  executor.drain();
}

void ModelFixture::launchWatching() {
  chooseFolderBefore(shots);
  launch();
}

AppModelDependencies ModelFixture::dependencies() {
  AppModelDependencies world;
  world.recordStore.fileURL = listFile;
  world.executor = &executor;
  world.disk = &disk;
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
  world.pictures = decodedPictures();
  world.scanWindows = [this](const FileURL& url, const std::optional<KnownWindows>& known) {
    return scanner.scan(url, known);
  };
  world.windowStates = [this] { return windowStates; };
  world.lookAtWindows = [this] {
    if (onLookAtWindows) onLookAtWindows();
  };
  world.analyzer = &analyzer;
  world.systemEvents = &systemEvents;
  world.now = [this] { return now(); };
  world.timeZone = [] { return QTimeZone::utc(); };
  world.confirmDeletion = [this](const QString& fileName) {
    deletionQuestions.push_back(fileName);
    if (onDeletionQuestion) onDeletionQuestion();
    return confirmsDeletion;
  };
  world.confirmWatching = [this](const FileURL& folder) {
    watchingQuestions.push_back(folder);
    return confirmsWatching;
  };
  world.isInTrash = [this](const FileURL& url) { return url.path().starts_with(trash.path() + "/"); };
  world.fileIdentity = [this](const FileURL& url) { return identityOf(url); };
  world.keepsIdentities = [this](const FileURL&) { return keepsIdentities; };
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
  world.hotKeys = &hotKeys;
  world.loginItems = &loginItems;
  world.interruptedSince = interruptedSince;
  return world;
}

Date ModelFixture::now() const {
  return Date{kStart + *clockOffset_ + std::chrono::duration<double>(executor.instant().time_since_epoch()).count()};
}

void ModelFixture::advance(double bySeconds) {
  executor.advance(seconds(bySeconds));
}

void ModelFixture::setClock(double bySeconds) {
  *clockOffset_ += bySeconds;
}

std::optional<FileIdentity> ModelFixture::identityOf(const FileURL& url) const {
  if (const auto found = identities.find(url.path()); found != identities.end()) return found->second;
  const auto status = fileStatus(url);
  if (!status || !status->isRegular()) return std::nullopt;
  return FileIdentity{"volume", status->inode, Date{kStart - 500.25}, status->size};
}

void ModelFixture::moveFile(const FileURL& from, const FileURL& to) {
  std::filesystem::rename(from.path(), to.path());
}

void ModelFixture::deleteFile(const FileURL& url) {
  ASSERT_TRUE(std::filesystem::remove(url.path())) << url.path();
}

void ModelFixture::moveFileFollowed(const FileURL& from, const FileURL& to) {
  moveFile(from, to);
  scope.follow(from, to);
}

void ModelFixture::ejectDisk() {
  isVolumeMounted = false;
  moveFile(shots, away);
}

void ModelFixture::connectDisk() {
  isVolumeMounted = true;
  moveFile(away, shots);
}

void ModelFixture::report(WatcherStatus status) {
  monitor.onStatusChange(status);
  executor.drain();
}

void ModelFixture::reportRemoval(const std::vector<FileURL>& urls) {
  monitor.onRemoval(urls);
  executor.drain();
}

void ModelFixture::moveElsewhere(const FileURL& shot) {
  moveFile(shot, elsewhere.appending(shot.lastPathComponent()));
  monitor.movedOut.insert(shot.path());
  reportRemoval({shot});
  monitor.movedOut.clear();
}

void ModelFixture::reconcileAll() {
  model->reconcile({});
  executor.drain();
}

UUID ModelFixture::arrive(std::string_view name) {
  const FileURL url = shots.appending(name);
  writeFile(url, name);
  monitor.onScreenshot(url);
  return model->items()[0].id;
}

UUID ModelFixture::arriveFromElsewhere(std::string_view name) {
  const FileURL url = shots.appending(name);
  writeFile(url, name);
  monitor.onArrivedScreenshot(url);
  return model->items()[0].id;
}

UUID ModelFixture::arriveTemporary(std::string_view name, TemporaryDuration duration) {
  const UUID id = arrive(name);
  model->markTemporary(id, duration).detach();
  return id;
}

UUID ModelFixture::arrivePermanent(std::string_view name) {
  const UUID id = arrive(name);
  model->keepPrompt(id).detach();
  return id;
}

void ModelFixture::makeUnavailable(const UUID& id) {
  const FileURL url = item(id).url;
  unreachableFolders.insert(url.parent().path());
  const FileURL hidden = home.file("hidden " + url.lastPathComponent());
  moveFile(url, hidden);
  model->reconcile({.ids = UUIDSet{id}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
  executor.drain();
  ASSERT_TRUE(model->unavailableItemIDs->contains(id));
}

void ModelFixture::makeSavingFail() {
  std::filesystem::remove_all(listFile.parent().path());
  std::filesystem::create_directories(listFile.parent().parent().path());
  writeFile(listFile.parent(), "a file where the folder should be");
}

void ModelFixture::makeSavingWork() {
  std::filesystem::remove(listFile.parent().path());
}

ScreenshotItem ModelFixture::item(const UUID& id) const {
  const ScreenshotItem* found = model->items().find(id);
  EXPECT_TRUE(found) << "no record " << uuidText(id);
  return found ? *found : ScreenshotItem();
}

bool ModelFixture::hasRecord(const UUID& id) const {
  return model->items().find(id) != nullptr;
}

State ModelFixture::stateOf(const UUID& id) const {
  return item(id).state;
}

const std::vector<UUID>& ModelFixture::queue() const {
  return *model->prompts().queue;
}

std::vector<ScreenshotItem> ModelFixture::savedRecords() const {
  return fileExists(listFile) ? ScreenshotRecordStore{listFile}.load(now()).items : std::vector<ScreenshotItem>();
}

std::optional<ScreenshotItem> ModelFixture::savedRecord(const UUID& id) const {
  for (const ScreenshotItem& record : savedRecords()) {
    if (record.id == id) return record;
  }
  return std::nullopt;
}

bool ModelFixture::wasSaved() {
  const auto status = fileStatus(listFile);
  const uint64_t inode = status ? status->inode : 0;
  const Date modified = status ? status->modified : Date{};
  const bool changed = inode != lastListInode_ || modified != lastListModified_;
  lastListInode_ = inode;
  lastListModified_ = modified;
  return changed;
}

QJsonObject ModelFixture::settingsOnDisk() const {
  return QJsonDocument::fromJson(QByteArray::fromStdString(readBytes(settingsFile))).object();
}

std::optional<Issue> ModelFixture::banner() const {
  return *model->backgroundIssue ? std::optional((*model->backgroundIssue)->kind) : std::nullopt;
}

std::optional<Date> ModelFixture::scheduledAt(const UUID& id) const {
  const auto& entries = model->expirationScheduler().expirations();
  const auto found = entries.find(id);
  return found == entries.end() ? std::nullopt : std::optional(found->second);
}

bool ModelFixture::isInTrashFolder(std::string_view name) const {
  return fileExists(trash.appending(name));
}

size_t ModelFixture::changesOf(ModelField field) const {
  return static_cast<size_t>(
      std::count_if(changes.begin(), changes.end(), [&](const ModelChange& one) { return one.field == field; }));
}

}  // namespace quillmere::testing
