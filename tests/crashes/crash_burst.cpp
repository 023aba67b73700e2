// A random burst of captures and decisions, for a process that is killed in it, or whose disk loses power.
//
//   crash_burst setup PROMISES SHOTS                                  chooses the folder of the screenshots
//   crash_burst burst PROMISES SHOTS ELSEWHERE OTHER SEED STEPS       captures and decides
//   crash_burst start PROMISES SHOTS                                  a start after that, and a clean end
//
// ELSEWHERE is a folder on the disk of SHOTS, OTHER is on another disk. The home is that of the environment.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QtCore/QCryptographicHash>
#include <algorithm>
#include <cstring>
#include <iostream>
#include <random>

#include "crashes/Promises.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"

namespace quillmere::testing {
namespace {

using State = ScreenshotItem::State;

constexpr QSize kWhole(64, 48);
const QRectF kCrop(8, 8, 40, 30);

QString hashOf(const QByteArray& bytes) {
  return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

class Burst {
 public:
  Burst(Promises& promises, char** folders, unsigned seed)
      : promises_(promises),
        shots_(FileURL::fromPath(std::string_view(folders[0]))),
        elsewhere_(FileURL::fromPath(std::string_view(folders[1]))),
        other_(FileURL::fromPath(std::string_view(folders[2]))),
        seed_(seed),
        dice_(seed) {}

  void play(int steps) {
    announceExpiries();
    program_.start();
    promises_.end(program_);
    for (int step = 0; step < steps; ++step) {
      playStep();
      announceExpiries();
      program_.settle();
      promises_.end(program_);
    }
  }

 private:
  void playStep() {
    switch (roll(20)) {
      case 0:
      case 1:
      case 2:
      case 3:
      case 4:
        for (int count = 1 + roll(3); count > 0; --count) capture();
        return;
      case 5:
      case 6:
        return keep();
      case 7:
      case 8:
        return makeTemporary();
      case 9:
      case 10:
        return trash();
      case 11:
        return trashSome();
      case 12:
      case 13:
        return rename();
      case 14:
        return move(elsewhere_.appending("New Folder " + std::to_string(number_++)));
      case 15:
        return move(elsewhere_);
      case 16:
      case 17:
        return move(other_);
      case 18:
        return replace();
      default:
        return letTimePass();
    }
  }

  int roll(int sides) { return static_cast<int>(dice_() % static_cast<unsigned>(sides)); }
  bool toss() { return roll(2) == 0; }
  QString freshName() { return QStringLiteral("Invoice %1-%2").arg(seed_).arg(number_++); }
  /// Now and then one that is taken.
  QString someName() { return roll(4) == 0 ? QStringLiteral("Invoice") : freshName(); }

  std::vector<ScreenshotItem> records(const std::function<bool(const ScreenshotItem&)>& fits) const {
    std::vector<ScreenshotItem> found;
    program_.model->items().forEach([&](const ScreenshotItem& item) {
      if (fits(item)) found.push_back(item);
    });
    return found;
  }
  std::optional<ScreenshotItem> any(const std::function<bool(const ScreenshotItem&)>& fits) {
    const auto found = records(fits);
    if (found.empty()) return std::nullopt;
    return found[static_cast<size_t>(roll(static_cast<int>(found.size())))];
  }
  std::optional<ScreenshotItem> anyPending() {
    return any([](const ScreenshotItem& item) { return item.state == State::pending; });
  }
  std::optional<ScreenshotItem> anyAtAll() {
    return any([](const ScreenshotItem&) { return true; });
  }

  /// As a tool does that puts its files down in one piece; it flushes them, so that they are there after a power cut.
  void capture() {
    const int size = 1 + roll(3);
    QImage picture(kWhole * size, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) picture.setPixel(x, y, static_cast<uint>(dice_()) | 0xff000000u);
    }
    const auto whole = ImageOperations::encode(picture, PictureFormat::png);
    const auto cropped = ImageOperations::crop(picture, kCrop);
    const auto crop = ImageOperations::encode(*cropped, PictureFormat::png);
    const std::string name = "Screenshot " + std::to_string(seed_) + "-" + std::to_string(number_++) + ".png";
    const FileURL place = shots_.appending(name);
    const FileURL staging = shots_.parent().appending("staging");
    promises_.write({{"capturing", Promises::path(place)}, {"whole", hashOf(*whole)}, {"crop", hashOf(*crop)}});
    const int file = ::open(staging.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool isWritten = writeAll(file, whole->constData(), static_cast<size_t>(whole->size())) && isDatedNow(file) &&
                           ::fsync(file) == 0 && ::close(file) == 0 && ::rename(staging.c_str(), place.c_str()) == 0 &&
                           flushFolder(shots_) && flushFolder(staging.parent());
    if (!isWritten) std::abort();
    promises_.write({{"captured", Promises::path(place)}});
  }

  /// In the program's time, or it would be a copy that kept its old date.
  bool isDatedNow(int file) const {
    timespec date{};
    ::clock_gettime(CLOCK_REALTIME, &date);
    date.tv_sec += static_cast<time_t>(program_.advanced());
    const timespec dates[2] = {date, date};
    return ::futimens(file, dates) == 0;
  }

  void keep() {
    const auto item = anyPending();
    if (!item) return;
    const auto name = toss() ? std::optional(someName()) : std::nullopt;
    promises_.begin("keep", {item->id}, {{"name", name.value_or(QString())}});
    program_.model->keepPrompt(item->id, name).detach();
  }
  void makeTemporary() {
    const auto item = anyPending();
    if (!item) return;
    const auto name = toss() ? std::optional(someName()) : std::nullopt;
    promises_.begin("temporary", {item->id}, {{"name", name.value_or(QString())}});
    program_.model->markTemporary(item->id, TemporaryDuration::oneMinute, name).detach();
  }
  void trash() {
    const auto item = toss() ? anyPending() : anyAtAll();
    if (!item) return;
    promises_.begin("trash", {item->id});
    const bool isInPopup = program_.presenter.visible == item->id;
    program_.model->disposeChosen(item->id, isInPopup ? ErrorScope::popup : ErrorScope::inbox).detach();
  }
  void trashSome() {
    auto items = records([](const ScreenshotItem& item) { return item.state != State::temporary; });
    std::shuffle(items.begin(), items.end(), dice_);
    items.resize(std::min<size_t>(items.size(), 3));
    if (items.size() < 2) return;
    promises_.begin("trash", idsOf(items));
    program_.model->disposeBatch(items, ErrorScope::inbox, AppModel::DisposalReason::chosen).detach();
  }
  void rename() {
    const auto item = anyAtAll();
    if (!item) return;
    const QString name = someName();
    promises_.begin("rename", {item->id}, {{"name", name}});
    program_.model->rename(item->id, name, ErrorScope::inbox).detach();
  }
  void move(const FileURL& folder) {
    const auto item = anyAtAll();
    if (!item) return;
    std::filesystem::create_directory(folder.path());
    if (!flushFolder(folder.parent())) std::abort();
    const FileURL place = folder.appending(freshName().toStdString() + ".png");
    promises_.begin("move", {item->id}, {{"to", Promises::path(place)}});
    program_.model->move(item->id, place).detach();
  }
  void replace() {
    const auto item = anyAtAll();
    if (!item) return;
    const auto picture = ImageOperations::loadImage(item->url);
    if (!picture || picture->width() < kWhole.width()) return;
    promises_.begin("replace", {item->id});
    replaceOriginal(item->id, *picture).detach();
    program_.executor.drain();
  }
  Task<> replaceOriginal(UUID id, QImage picture) {
    const auto replacing = program_.model->replaceOriginal(id, picture, kCrop);
    const auto failure = co_await replacing;
    if (!failure) promises_.noteReplaced(id);
  }
  /// Those that come while the program settles.
  void announceExpiries() {
    constexpr double kLongerThanThat = 2;
    const auto due = records([this](const ScreenshotItem& item) {
      return item.expiresAt && *item.expiresAt - program_.now() < kLongerThanThat;
    });
    if (!due.empty()) promises_.begin("expire", idsOf(due));
  }
  void letTimePass() {
    const auto due = records([](const ScreenshotItem& item) { return item.state == State::temporary; });
    promises_.begin("expire", idsOf(due));
    program_.letTimePass();
  }
  static std::vector<UUID> idsOf(const std::vector<ScreenshotItem>& items) {
    std::vector<UUID> ids;
    for (const ScreenshotItem& item : items) ids.push_back(item.id);
    return ids;
  }

  CrashedProgram program_;
  Promises& promises_;
  const FileURL shots_;
  const FileURL elsewhere_;
  const FileURL other_;
  const unsigned seed_;
  std::mt19937 dice_;
  int number_ = 1;
};

}  // namespace
}  // namespace quillmere::testing

int main(int argc, char** argv) {
  using namespace quillmere;
  using namespace quillmere::testing;
  const QCoreApplication application(argc, argv);
  const std::string mode = argc > 3 ? argv[1] : "";
  if (mode == "setup") {
    CrashedProgram program;
    program.start();
    program.model->adoptWatchFolder(FileURL::fromPath(std::string_view(argv[3])), ErrorScope::settings);
    program.settle();
    return *program.model->watcherStatus == WatcherStatus::watching ? 0 : 1;
  }
  if (mode == "start") {
    CrashedProgram program;
    program.start();
    program.model->saveNow();
    program.executor.drain();
    return *program.model->watcherStatus == WatcherStatus::watching && program.model->isSaved() ? 0 : 1;
  }
  if (mode == "burst" && argc == 8) {
    Promises promises(argv[2]);
    Burst(promises, argv + 3, static_cast<unsigned>(std::stoul(argv[6]))).play(std::stoi(argv[7]));
    return 0;
  }
  std::cerr << "usage: crash_burst setup | burst | start ...\n";
  return 2;
}
