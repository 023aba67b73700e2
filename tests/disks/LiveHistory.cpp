#include "disks/LiveHistory.h"

#include <array>

namespace quillmere::testing {
namespace {

using State = ScreenshotItem::State;

constexpr double kTwoDays = 2 * 86400.0;

/// A folder of a file system that is not the home's.
std::string folderOfAnotherDisk() {
  struct stat home {};
  ::stat(privateHome().c_str(), &home);
  for (const char* folder : {"/dev/shm", "/var/tmp", "/tmp"}) {
    struct stat other {};
    if (::stat(folder, &other) == 0 && other.st_dev != home.st_dev) return folder;
  }
  throw std::runtime_error("there is one file system only");
}

std::string quoted(const FileURL& url) {
  return "“" + url.parent().lastPathComponent() + "/" + url.lastPathComponent() + "”";
}

std::vector<FileURL> filesIn(const FileURL& folder) {
  std::vector<FileURL> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path(), error)) {
    if (entry.is_regular_file()) files.push_back(FileURL::fromPath(entry.path().string()));
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

LiveHistory::LiveHistory(uint64_t seed)
    : random_(seed), otherDisk_(folderOfAnotherDisk()), live_(State::temporary, shots_) {
  std::filesystem::create_directories(elsewhere_.path());
  for (const int number : {1, 2, 3}) files_[number] = File{};
  files_[1].choice = Choice::temporary;
  files_[1].expiresAt = live_.record()->expiresAt.value();
}

std::string LiveHistory::play() {
  struct Step {
    uint32_t weight;
    void (LiveHistory::*perform)();
  };
  using Self = LiveHistory;
  static constexpr std::array kSteps{
      Step{12, &Self::capture},
      Step{3, &Self::captureUnderAnOldName},
      Step{5, &Self::renameByHand},
      Step{3, &Self::moveElsewhere},
      Step{2, &Self::moveToAnotherDisk},
      Step{4, &Self::moveBack},
      Step{3, &Self::deleteByHand},
      Step{2, &Self::trashByHand},
      Step{2, &Self::replace},
      Step{2, &Self::writeTo},
      Step{9, &Self::makeTemporary},
      Step{4, &Self::keep},
      Step{3, &Self::throwAway},
      Step{4, &Self::renameInProgram},
      Step{2, &Self::moveInProgram},
      Step{12, &Self::pass},
      Step{2, &Self::wake},
      Step{2, &Self::quit},
      Step{2, &Self::kill},
      Step{6, &Self::start},
  };
  uint32_t weights = 0;
  for (const Step& step : kSteps) weights += step.weight;
  for (uint32_t left = 6 + below(25); left > 0 && failure_.empty(); --left) {
    uint32_t place = below(weights);
    size_t index = 0;
    while (place >= kSteps[index].weight) place -= kSteps[index++].weight;
    (this->*kSteps[index].perform)();
    // Most of what happens is heard before the next thing happens.
    if (below(6) != 0) hear();
    judge();
  }
  if (failure_.empty()) settle();
  return failure_.empty() ? std::string() : failure_ + story_;
}

// --- A capture tool, and a person with a file manager ---

void LiveHistory::write(int number, const FileURL& url, const std::string& more) {
  writeFile(url, "picture " + std::to_string(number) + " " + more);
}

void LiveHistory::capture() {
  const int number = ++lastNumber_;
  const FileURL url = shots_.appending("Screenshot " + std::to_string(number) + ".png");
  files_[number].isExpected = isRunning();
  write(number, url);
  say(quoted(url) + " is captured");
  hear();
}

/// The file of that name was moved or thrown away before.
void LiveHistory::captureUnderAnOldName() {
  const FileURL url = shots_.appending("Screenshot " + std::to_string(1 + below(lastNumber_)) + ".png");
  if (fileExists(url)) return;
  hear();  // a name that is taken again before it was missed is the old file to whoever was not told
  const int number = ++lastNumber_;
  files_[number].isExpected = isRunning();
  write(number, url);
  say(quoted(url) + " is captured under an old name, as number " + std::to_string(number));
  hear();
}

void LiveHistory::renameByHand() {
  const auto file = pick(shots_);
  if (!file) return;
  const FileURL to = shots_.appending("by hand " + std::to_string(++names_) + ".png");
  std::filesystem::rename(file->second.path(), to.path());
  say(quoted(file->second) + " becomes " + quoted(to));
}

void LiveHistory::moveElsewhere() {
  const auto file = pick(shots_);
  if (!file) return;
  const FileURL to = elsewhere_.appending("moved " + std::to_string(++names_) + ".png");
  std::filesystem::rename(file->second.path(), to.path());
  say(quoted(file->second) + " is moved to " + quoted(to));
}

/// To the program that is a deletion.
void LiveHistory::moveToAnotherDisk() {
  const auto file = pick(shots_);
  if (!file) return;
  const FileURL to = otherDisk_.file("away " + std::to_string(++names_) + ".png");
  std::filesystem::copy_file(file->second.path(), to.path());
  std::filesystem::remove(file->second.path());
  setExpected(file->first, false);
  say(quoted(file->second) + " is moved to another disk");
}

void LiveHistory::moveBack() {
  const auto file = pick(elsewhere_);
  if (!file) return;
  const FileURL to = shots_.appending("back " + std::to_string(++names_) + ".png");
  std::filesystem::rename(file->second.path(), to.path());
  say(quoted(file->second) + " comes back as " + quoted(to));
}

void LiveHistory::deleteByHand() {
  const auto file = pick(shots_);
  if (!file) return;
  files_[file->first].isGone = true;
  std::filesystem::remove(file->second.path());
  say(quoted(file->second) + " is deleted");
}

void LiveHistory::trashByHand() {
  const auto file = pick(below(2) == 0 ? shots_ : elsewhere_);
  if (!file) return;
  files_[file->first].mayBeTrashed = true;
  LiveFileOperations().trash(file->second);
  say(quoted(file->second) + " is thrown away by hand");
}

void LiveHistory::replace() {
  const auto file = pick(shots_);
  if (!file) return;
  files_[file->first].isGone = true;
  const int number = ++lastNumber_;
  files_[number].isExpected = false;  // to whoever did not look in between, it is the old one
  const FileURL temporary = home_.file("written");
  write(number, temporary);
  std::filesystem::rename(temporary.path(), file->second.path());
  say(quoted(file->second) + " is replaced by number " + std::to_string(number));
}

void LiveHistory::writeTo() {
  const auto file = pick(shots_);
  if (!file) return;
  files_[file->first].isWrittenTo = true;
  files_[file->first].wasWrittenTo = true;
  write(file->first, file->second, std::string(1 + below(50), 'w'));
  say(quoted(file->second) + " is written to");
}

// --- A person in the program ---

std::optional<ScreenshotItem> LiveHistory::pickRecord() {
  if (!isRunning()) return std::nullopt;
  const auto records = live_.records();
  return records.empty() ? std::nullopt : std::optional(records[below(static_cast<uint32_t>(records.size()))]);
}

void LiveHistory::makeTemporary() {
  const auto item = pickRecord();
  if (!item) return;
  const auto duration = TemporaryDuration::fiveMinutes;
  const auto number = numberAt(item->url);
  say("the person makes " + quoted(item->url) + " Temporary");
  if (item->state == State::pending && below(2) == 0) {
    std::optional<QString> name;
    if (below(2) == 0) name = QStringLiteral("temporary %1").arg(++names_);
    live_.model->markTemporary(item->id, duration, name).detach();
  } else {
    live_.model->markTemporaryBatch({item->id}, duration);
  }
  live_.executor.drain();
  const ScreenshotItem* after = live_.model->items().find(item->id);
  if (!number || !after || !after->expiresAt || numberAt(after->url) != number) return;
  files_[*number].choice = Choice::temporary;
  files_[*number].isWrittenTo = false;
  files_[*number].expiresAt = *after->expiresAt;
}

void LiveHistory::keep() {
  const auto item = pickRecord();
  if (!item) return;
  const auto number = numberAt(item->url);
  say("the person keeps " + quoted(item->url));
  if (item->state == State::pending && below(2) == 0) {
    live_.model->keepPrompt(item->id, QStringLiteral("kept %1").arg(++names_)).detach();
  } else {
    live_.model->keepBatch({item->id});
  }
  live_.executor.drain();
  const ScreenshotItem* after = live_.model->items().find(item->id);
  if (number && after && after->state == State::permanent) files_[*number].choice = Choice::kept;
}

/// The file that stands there is what the person sees, and so what is meant.
void LiveHistory::throwAway() {
  const auto item = pickRecord();
  if (!item) return;
  say("the person throws away " + quoted(item->url));
  const auto meant = numberAt(item->url);
  if (meant) files_[*meant].mayBeTrashed = true;
  // A file that moved is followed, and is the one that the record shows.
  std::vector<int> followed;
  for (const auto& [number, urls] : places()) {
    const auto status = fileStatus(urls.front());
    const bool isSame = status && item->fileIdentity && status->inode == item->fileIdentity->file;
    if (isSame && !files_[number].mayBeTrashed) followed.push_back(number);
  }
  for (const int number : followed) files_[number].mayBeTrashed = true;
  live_.finish(live_.model->disposeItem(*item, ErrorScope::inbox, AppModel::DisposalReason::chosen));
  const auto after = places();
  const auto unlessTrashed = [&](int number) {
    const auto found = after.find(number);
    const bool isTrashed = found != after.end() && found->second.front().parent() == homeTrash().appending("files");
    files_[number].mayBeTrashed = isTrashed;
  };
  if (meant) unlessTrashed(*meant);
  for (const int number : followed) unlessTrashed(number);
}

void LiveHistory::renameInProgram() {
  const auto item = pickRecord();
  if (!item) return;
  const QString name = QStringLiteral("named %1").arg(++names_);
  say("the person renames " + quoted(item->url) + " to " + name.toStdString());
  if (const auto number = numberAt(item->url)) files_[*number].isWrittenTo = false;
  live_.finish(live_.model->rename(item->id, name, ErrorScope::inbox));
}

void LiveHistory::moveInProgram() {
  const auto item = pickRecord();
  if (!item) return;
  const std::string name = "chosen " + std::to_string(++names_) + ".png";
  const FileURL to = below(2) == 0 ? elsewhere_.appending(name) : otherDisk_.file(name);
  say("the person moves " + quoted(item->url) + " to " + quoted(to) + " in the program");
  if (const auto number = numberAt(item->url)) files_[*number].isWrittenTo = false;
  live_.finish(live_.model->move(item->id, to));
}

// --- The machine ---

void LiveHistory::hear() {
  if (!isRunning()) return;
  live_.hearEvents();
  live_.advance(0.4);
  live_.hearEvents();
  std::vector<FileURL> undecided;
  for (const ScreenshotItem& item : live_.records()) {
    if (item.state != State::permanent) undecided.push_back(item.url);
  }
  live_.hold(undecided);
}

void LiveHistory::pass() {
  static constexpr std::array kTimes{1.0, 30.0, 299.0, 301.0, 7200.0};
  const double time = kTimes[below(kTimes.size())];
  say(std::to_string(static_cast<int>(time)) + " seconds pass");
  // A long time is slept through.
  if (time > 200) live_.clockOffset += time;
  live_.advance(std::min(time, 31.0));
}

void LiveHistory::wake() {
  say("the machine wakes");
  if (isRunning()) live_.tellOfWaking();
}

void LiveHistory::end(bool isKilled) {
  if (!isRunning()) return;
  say(isKilled ? "the program is killed" : "the person quits");
  if (!isKilled && live_.model->hasPendingSave()) live_.model->saveNow();
  live_.quit();
}
void LiveHistory::quit() {
  end(false);
}
void LiveHistory::kill() {
  end(true);
}

void LiveHistory::start() {
  if (isRunning()) return;
  say("the program starts");
  // What came meanwhile is old to it.
  live_.launch();
}

// --- What has to be so ---

LiveHistory::Places LiveHistory::places() const {
  Places found;
  for (const FileURL& folder : {shots_, elsewhere_, otherDisk_.url(), homeTrash().appending("files")}) {
    for (const FileURL& url : filesIn(folder)) {
      if (const auto number = numberAt(url)) found[*number].push_back(url);
    }
  }
  return found;
}

std::optional<int> LiveHistory::numberAt(const FileURL& url) const {
  constexpr std::string_view kBeginning = "picture ";
  const auto bytes = readFile(url);
  if (!bytes || !bytes->starts_with(kBeginning)) return std::nullopt;
  return std::atoi(bytes->c_str() + kBeginning.size());
}

std::optional<std::pair<int, FileURL>> LiveHistory::pick(const FileURL& folder) {
  const auto files = filesIn(folder);
  if (files.empty()) return std::nullopt;
  const FileURL& url = files[below(static_cast<uint32_t>(files.size()))];
  const auto number = numberAt(url);
  return number ? std::optional(std::pair(*number, url)) : std::nullopt;
}

void LiveHistory::judge() {
  const auto found = places();
  const FileURL trash = homeTrash().appending("files");
  for (const auto& [number, file] : files_) {
    const std::string name = "number " + std::to_string(number);
    const auto urls = found.find(number);
    if (file.isGone) {
      if (urls != found.end()) fail(name + " is there although it was given up");
      continue;
    }
    if (urls == found.end()) {
      fail(name + " is lost");
      continue;
    }
    if (urls->second.size() > 1) fail(name + " is there twice");
    if (urls->second.front().parent() != trash || file.mayBeTrashed) continue;
    const bool isExpired = file.choice == Choice::temporary && live_.now() >= file.expiresAt && !file.isWrittenTo;
    if (!isExpired) fail(name + " was thrown away, and nobody gave it up");
  }
  if (isRunning() && !live_.model->hasPendingSave() && live_.savedRecords() != live_.records()) {
    fail("the list on the disk is another one than that in memory");
  }
}

void LiveHistory::settle() {
  say("everything settles");
  if (!isRunning()) start();
  for (int run = 0; run < 2 && failure_.empty(); ++run) {
    hear();
    live_.advance(130);
    live_.tellOfWaking();
    hear();
    live_.clockOffset += kTwoDays;
    live_.tellOfWaking();
    live_.advance(61);
    hear();
    judge();
    judgeSettled();
    end(run == 0);
    if (run == 0) start();
  }
}

void LiveHistory::judgeSettled() {
  std::map<std::string, int> records;
  for (const ScreenshotItem& item : live_.records()) {
    const bool isUnavailable = live_.model->unavailableItemIDs->contains(item.id);
    // One whose file moved out of sight keeps the last name that is known of it.
    if (!isUnavailable && ++records[item.url.path()] > 1) fail("two records of " + quoted(item.url));
    if (!fileExists(item.url) && !isUnavailable) fail("a record without a file: " + quoted(item.url));
    if (item.state == State::temporary && !isUnavailable)
      fail("a Temporary record after two days: " + quoted(item.url));
  }
  for (const auto& [number, urls] : places()) {
    const File& file = files_[number];
    const bool mayBeForgotten = file.choice == Choice::temporary && file.wasWrittenTo;
    const bool isExpected = file.isExpected && !mayBeForgotten;
    if (isExpected && urls.front().parent() == shots_ && !records.contains(urls.front().path())) {
      fail("number " + std::to_string(number) + " has no record: " + quoted(urls.front()));
    }
  }
}

}  // namespace quillmere::testing
