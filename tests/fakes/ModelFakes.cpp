#include "fakes/ModelFakes.h"

namespace quillmere::testing {

void CallLog::add(const std::string& call) {
  calls_.push_back(call);
}

const std::vector<std::string>& CallLog::calls() const {
  return calls_;
}

size_t CallLog::count(const std::string& call) const {
  return static_cast<size_t>(std::count(calls_.begin(), calls_.end(), call));
}

FileOutcome FakeFileOperations::trash(const FileURL& url, TrashReport& report) {
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

FileOutcome FakeFileOperations::restore(const FileURL& place, const FileURL& url) {
  return moving(place, url);
}

FileOutcome FakeFileOperations::move(const FileURL& from, const FileURL& to, QString& reason) {
  ++moveCalls;
  if (onMove) onMove(from, to);
  reason = failureReason;
  if (refusesReplacements && from.lastPathComponent().starts_with(".quillmere-replacing-")) return FileOutcome::failed;
  return moving(from, to);
}

FileOutcome FakeFileOperations::remove(const FileURL& url) {
  ++removeCalls;
  if (const auto answer = answers.find(url.path()); answer != answers.end()) return answer->second;
  return std::filesystem::remove(url.path()) ? FileOutcome::done : FileOutcome::missing;
}

int FakeFileOperations::calls() const {
  return trashCalls + moveCalls + removeCalls;
}

void FakeFileOperations::refuse(const FileURL& url) {
  answers[url.path()] = FileOutcome::failed;
}

void FakeFileOperations::allow(const FileURL& url) {
  answers.erase(url.path());
}

FileOutcome FakeFileOperations::moving(const FileURL& from, const FileURL& to) {
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

QByteArray FakeSecurityScope::bookmarkOf(const FileURL& url) {
  return "bookmark of " + QByteArray::fromStdString(url.path());
}

bool FakeSecurityScope::start(const FileURL& url) {
  if (refusesAccess.contains(url.path()) || !fileExists(url)) return false;
  ++starts;
  ++open[url.path()];
  log_.add("start access " + url.lastPathComponent());
  return true;
}

void FakeSecurityScope::stop(const FileURL& url) {
  ++stops;
  if (--open[url.path()] < 0) ++stopsWithoutStart;
  log_.add("stop access " + url.lastPathComponent());
}

std::optional<QByteArray> FakeSecurityScope::makeBookmark(const FileURL& url) {
  ++made;
  log_.add("make bookmark " + url.lastPathComponent());
  if (refusesBookmarks || refusedBookmarks.contains(url.path())) return std::nullopt;
  return bookmarkOf(url);
}

std::optional<SecurityScopeAccess::Resolution> FakeSecurityScope::resolve(const QByteArray& bookmark) {
  ++resolved;
  if (const auto place = places.find(bookmark); place != places.end()) return place->second;
  const FileURL url = FileURL::fromPath(bookmark.mid(12).toStdString());
  if (!fileExists(url)) return std::nullopt;
  return Resolution{url, false};
}

void FakeSecurityScope::follow(const FileURL& from, const FileURL& to) {
  places[bookmarkOf(from)] = Resolution{to, true, from};
}

void FakeSecurityScope::lose(const FileURL& url) {
  places[bookmarkOf(url)] = std::nullopt;
}

bool FakeSecurityScope::isOpen(const FileURL& url) const {
  const auto found = open.find(url.path());
  return found != open.end() && found->second > 0;
}

int FakeSecurityScope::openCount() const {
  int sum = 0;
  for (const auto& [path, count] : open) sum += count;
  return sum;
}

std::optional<QByteArray> FakeWatchFolderStore::bookmark() {
  log_.add("read folder bookmark");
  return stored;
}

bool FakeWatchFolderStore::setBookmark(const QByteArray& bookmark) {
  log_.add("store folder bookmark");
  if (refuses) return false;
  stored = bookmark;
  return true;
}

void FakePresenter::present(const ScreenshotItem& item, AppModel&) {
  log_.add("present " + item.url.lastPathComponent());
  presented.push_back(item.id);
  visible = item.id;
}

void FakePresenter::hide() {
  log_.add("hide");
  ++hides;
  visible.reset();
}

void FakePresenter::focusForReview() {
  log_.add("focus");
  ++focuses;
}

bool FakePresenter::isPointerEngaged() const {
  if (onPointerAsked) onPointerAsked();
  return isEngaged;
}

void FakeMonitor::watch(std::optional<FileURL> directory) {
  log_.add("watch " + (directory ? directory->lastPathComponent() : std::string("nothing")));
  watched = std::move(directory);
}

void FakeMonitor::start() {
  log_.add("start monitor");
  ++starts;
}

bool FakeMonitor::includesNonCaptureImages() const {
  return includes;
}

void FakeMonitor::setIncludesNonCaptureImages(bool isOn) {
  log_.add(isOn ? "include other images" : "captures only");
  includes = isOn;
}

void FakeMonitor::expectArrivalsSince(std::optional<Date> moment) {
  if (moment) log_.add("expect arrivals");
  expectedSince = moment;
}

void FakeMonitor::noteKnown(const FileURL& url) {
  known.push_back(url);
}

void FakeMonitor::noteUnknown(const FileURL& url) {
  unknown.push_back(url);
}

void FakeMonitor::refresh() {
  ++refreshes;
  if (watched && isReadableDirectory(*watched) && onStatusChange) onStatusChange(WatcherStatus::watching);
}

std::optional<FileURL> FakeFileChooser::chooseFolder(const FolderPanelStart& start) {
  starts.push_back(start);
  return answer;
}

std::optional<FileURL> FakeFileChooser::chooseDestination(const SavePanelStart& start) {
  saveStarts.push_back(start);
  if (whileOpen) whileOpen();
  return destination;
}

std::optional<FileURL> FakeScreenshotLocation::folder() {
  ++reads;
  return value ? std::optional(FileURL::fromPath(*value)) : standard;
}

std::optional<QString> FakeScreenshotLocation::rawValue() {
  return value;
}

QString FakeScreenshotLocation::rawValueOf(const FileURL& folder) {
  return folder.displayPath();
}

bool FakeScreenshotLocation::tryToSetRawValue(const std::optional<QString>& to) {
  ++writes;
  if (refuses) return false;
  if (!ignores) value = to;
  return true;
}

QStringList FakeKeyboardLayout::texts(quint32 keyCode) const {
  const auto found = named.find(keyCode);
  return found == named.end() ? QStringList() : found->second;
}

std::optional<quint32> FakeKeyboardLayout::keyCode(quint32 nativeScanCode) const {
  const auto found = scanCodes.find(nativeScanCode);
  return found == scanCodes.end() ? std::nullopt : std::optional(found->second);
}

Result<HotKeyRegistering::Token, GlobalHotKeyError> FakeHotKeys::registerShortcut(const HotKeyShortcut& shortcut,
                                                                                  std::function<void()> action) {
  if (refusal) return *refusal;
  registered.emplace(++lastToken, std::pair(shortcut, std::move(action)));
  return lastToken;
}

void FakeHotKeys::unregister(Token token) {
  registered.erase(token);
}

std::optional<GlobalHotKeyError> FakeHotKeys::setSuspended(bool nowSuspended) {
  isSuspended = nowSuspended;
  return isSuspended ? std::nullopt : resumeRefusal;
}

void FakeHotKeys::press(const HotKeyShortcut& shortcut) const {
  if (isSuspended) return;
  for (const auto& [token, registration] : registered) {
    if (registration.first == shortcut) return registration.second();
  }
}

std::optional<QString> FakeLoginItems::registerItem() {
  if (!problem) current = afterRegistering;
  return problem;
}

std::optional<QString> FakeLoginItems::unregisterItem() {
  if (!problem) current = LoginItemStatus::notRegistered;
  return problem;
}

void FakePasteboard::write(const ScreenshotPasteboardItem& item) {
  items.push_back(item);
}

void FakePasteboard::write(const QString& text) {
  texts.push_back(text);
}

void FakeAnnouncer::announce(const QString& text, AnnouncementPriority priority) {
  log_.add("announce");
  said.push_back({text, priority});
}

bool FakeAnnouncer::hasSaid(const QString& text) const {
  return std::any_of(said.begin(), said.end(), [&](const Announcement& one) { return one.text == text; });
}

}  // namespace quillmere::testing
