// The folder's disk leaves, comes back, is another one, comes late or is read-only, while nothing, an expiry, a popup,
// a rename or a reconciliation goes on: no record and no file is lost, and none of another disk is touched. The model,
// its monitor, the list, bookmarks, mounts and file operations are real.

#include <array>

#include "disks/FolderOnADisk.h"
#include "faults/LiveModel.h"

namespace quillmere {
namespace {

using testing::FolderOnADisk;
using testing::LiveModel;
using Place = FolderOnADisk::Place;
using State = ScreenshotItem::State;

enum class Disk { leaves, comesBack, isAnother, comesLate, isReadOnly };
enum class Meanwhile { nothing, expiryDue, popupOpen, rename, reconciliation };

const std::vector<std::string> kNames{"Screenshot 1.png", "Screenshot 2.png", "Screenshot 3.png"};

State stateFor(Meanwhile meanwhile) {
  switch (meanwhile) {
    case Meanwhile::popupOpen:
      return State::pending;
    case Meanwhile::rename:
      return State::permanent;
    default:
      return State::temporary;
  }
}

std::string contents(const FileURL& file) {
  return readFile(file).value_or("unreadable");
}

bool holds(const FileURL& folder, const std::string& bytes) {
  std::error_code error;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path(), error)) {
    if (entry.is_regular_file() && contents(FileURL::fromPath(entry.path().native())) == bytes) return true;
  }
  return false;
}

/// One cell.
class Cell {
 public:
  Cell(Place place, Meanwhile meanwhile) : place_(place), meanwhile_(meanwhile), folder_(place) {}

  std::string play(Disk disk) {
    MUST(folder_.make(kNames));
    live_ = std::make_unique<LiveModel>(stateFor(meanwhile_), folder_.url());
    MUST(*live_->model->watcherStatus == WatcherStatus::watching);
    before_ = live_->records();
    MUST(before_.size() == 3);
    // It is under way when the disk changes.
    if (meanwhile_ == Meanwhile::reconciliation) live_->tellOfWaking();
    if (disk == Disk::isReadOnly) return playReadOnly();
    if (disk == Disk::comesLate) live_->quit();
    MUST(folder_.disconnect());
    if (disk == Disk::isAnother) MUST(folder_.connectOther());
    if (disk == Disk::comesLate) live_->launch();
    if (auto failure = stayAway(); !failure.empty()) return failure;
    if (disk == Disk::leaves) return {};
    if (disk == Disk::isAnother) {
      for (const std::string& name : kNames) {
        MUST(contents(folder_.url().appending(name)) == FolderOnADisk::bytesOfOthers(name));
      }
      MUST(folder_.disconnect());
    }
    MUST(folder_.connect());
    return comeBack();
  }

 private:
  std::string playReadOnly() {
    MUST(folder_.setReadOnly(true));
    live_->tellOfMounts();
    goOn();
    MUST(*live_->model->watcherStatus == WatcherStatus::watching);
    MUST(isAsBefore(live_->records()) && isAsBefore(live_->savedRecords()));
    MUST(folder_.setReadOnly(false));
    return comeBack();
  }
  std::string stayAway() {
    live_->tellOfMounts();
    goOn();
    MUST(*live_->model->watcherStatus == WatcherStatus::volumeNotConnected);
    MUST(isAsBefore(live_->records()) && isAsBefore(live_->savedRecords()));
    MUST(live_->model->unavailableItemIDs->size() == 3);
    MUST(!live_->presenter.visible);
    // Nor does time, or a start, change anything.
    live_->advance(meanwhile_ == Meanwhile::expiryDue ? 4000 : 61);
    live_->launch();
    MUST(*live_->model->watcherStatus == WatcherStatus::volumeNotConnected);
    MUST(isAsBefore(live_->records()) && isAsBefore(live_->savedRecords()));
    return {};
  }
  std::string comeBack() {
    live_->tellOfMounts();
    live_->executor.drain();
    MUST(*live_->model->watcherStatus == WatcherStatus::watching);
    MUST(live_->model->unavailableItemIDs->empty() || isDue());
    if (isDue()) {
      live_->advance(4000);
      // The desktop has no Trash for a bind mount: the screenshot stays, and the person is told.
      if (place_ == Place::bindMount) {
        MUST(isAsBefore(live_->records()) && contents(live_->oldPlace) == LiveModel::bytesOf(1));
        MUST(live_->banner() == BackgroundIssue::Kind::expiredScreenshotsNotTrashed);
        return {};
      }
      MUST(!live_->record() && live_->records().size() == 2);
      MUST(!fileExists(live_->oldPlace));
      MUST(holds(folder_.everything(), LiveModel::bytesOf(1)) || holds(testing::homeTrash(), LiveModel::bytesOf(1)));
      return {};
    }
    MUST(isAsBefore(live_->records()) && isAsBefore(live_->savedRecords()));
    for (const int number : {1, 2, 3}) {
      MUST(contents(folder_.url().appending(kNames[static_cast<size_t>(number - 1)])) == LiveModel::bytesOf(number));
    }
    return {};
  }

  bool isDue() const { return meanwhile_ == Meanwhile::expiryDue; }
  void goOn() {
    live_->advance(1);
    if (meanwhile_ == Meanwhile::expiryDue) live_->advance(LiveModel::kLifetime);
    if (meanwhile_ == Meanwhile::rename) {
      live_->finish(live_->model->rename(live_->id, QStringLiteral("Invoice"), ErrorScope::inbox));
    }
    live_->executor.drain();
  }
  /// Whether no record has changed but for its bookmark.
  bool isAsBefore(const std::optional<std::vector<ScreenshotItem>>& now) const {
    if (!now || now->size() != before_.size()) return false;
    for (size_t i = 0; i < before_.size(); ++i) {
      ScreenshotItem one = (*now)[i];
      one.fileBookmark = before_[i].fileBookmark;
      if (one != before_[i]) return false;
    }
    return true;
  }

  const Place place_;
  const Meanwhile meanwhile_;
  FolderOnADisk folder_;
  std::unique_ptr<LiveModel> live_;
  std::vector<ScreenshotItem> before_;
};

class DiskMatrixTest : public ::testing::TestWithParam<std::tuple<Place, Disk>> {};

TEST_P(DiskMatrixTest, LosesNothing) {
  const Place place = std::get<Place>(GetParam());
  const Disk disk = std::get<Disk>(GetParam());
  for (const Meanwhile meanwhile :
       {Meanwhile::nothing, Meanwhile::expiryDue, Meanwhile::popupOpen, Meanwhile::rename, Meanwhile::reconciliation}) {
    EXPECT_EQ(testing::failureWithPrivateMounts([&] { return Cell(place, meanwhile).play(disk); }), "")
        << "while " << static_cast<int>(meanwhile);
  }
}

std::string nameOf(const ::testing::TestParamInfo<std::tuple<Place, Disk>>& cell) {
  constexpr std::array kPlaces{"AMountPoint", "ASubfolder", "ABindMount", "AFolderWithAnotherBelow"};
  constexpr std::array kDisks{"Leaves", "ComesBack", "IsAnother", "ComesLate", "IsReadOnly"};
  return std::string(kPlaces.at(static_cast<size_t>(std::get<Place>(cell.param)))) +
         kDisks.at(static_cast<size_t>(std::get<Disk>(cell.param)));
}

INSTANTIATE_TEST_SUITE_P(Disks, DiskMatrixTest,
                         ::testing::Combine(::testing::Values(Place::mountPoint, Place::subfolder, Place::bindMount,
                                                              Place::folderBelow),
                                            ::testing::Values(Disk::leaves, Disk::comesBack, Disk::isAnother,
                                                              Disk::comesLate, Disk::isReadOnly)),
                         nameOf);

}  // namespace
}  // namespace quillmere
