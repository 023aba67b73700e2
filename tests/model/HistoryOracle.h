#pragma once

#include "model/HistoryProgram.h"

namespace quillmere::testing {

/// What went against the person: which of the rules, and how.
struct HistoryFailure {
  std::string rule;
  std::string text;
};

/// What the person did, as far as it tells what the program may do and must have done. It knows files, not records.
class HistoryOracle {
 public:
  HistoryOracle(HistoryWorld& world, HistoryProgram& program) : world_(world), program_(program) {
    program.files.willDispose = [this](const HistoryWorld::File& file) { judgeDisposal(file); };
    program.files.didMove = [this](const HistoryWorld::File& file) {
      if (const auto choice = temporary_.find(file.number); choice != temporary_.end()) choice->second.place = file.url;
    };
  }

  const std::optional<HistoryFailure>& failure() const { return failure_; }
  void fail(const char* rule, const std::string& text) {
    if (!failure_) failure_ = HistoryFailure{rule, text};
  }
  static std::string describe(const HistoryWorld::File& file) {
    return "file " + std::to_string(file.number) + " (" + file.url.lastPathComponent() + ")";
  }

  // --- What the person did ---

  void choseTemporary(const ScreenshotItem& item, Date expiresAt) {
    if (const auto* file = fileOf(item)) temporary_[file->number] = {expiresAt, item.url};
    if (!item.fileIdentity) namesMadeTemporary_[item.url.lastPathComponent()] = expiresAt;
  }
  void choseToKeep(const ScreenshotItem& item) {
    const auto* file = fileOf(item);
    const auto choice = file ? temporary_.find(file->number) : temporary_.end();
    // Once it is due, it may be on its way to Trash.
    if (choice != temporary_.end() && choice->second.expiresAt > world_.now()) temporary_.erase(choice);
  }
  /// Until `hasChosenForTrash` with what this gives. What stands under a record's name is what the person sees of it.
  std::vector<int> choosesForTrash(const std::vector<ScreenshotItem>& items) {
    std::vector<int> chosen;
    for (const ScreenshotItem& item : items) {
      if (const auto* file = fileOf(item)) left(*file);
      // A disk that is away may be back before the work has its turn.
      const bool isAway = !world_.isMounted && !world_.at(item.url);
      const FileURL place = isAway ? world_.folder.appending(item.url.lastPathComponent()) : item.url;
      if (const auto* file = world_.at(place)) chosen.push_back(file->number);
    }
    chosenForTrash_.insert(chosen.begin(), chosen.end());
    return chosen;
  }
  void hasChosenForTrash(const std::vector<int>& chosen) {
    for (const int number : chosen) chosenForTrash_.erase(chosenForTrash_.find(number));
  }
  void movedFolder(const FileURL& from, const FileURL& to) {
    for (auto& [number, choice] : temporary_) {
      if (choice.place.parent() == from) choice.place = to.appending(choice.place.lastPathComponent());
    }
  }
  /// A file has come to its place. Whether that was news to the program was asked before.
  void appeared(const HistoryWorld::File& file, bool wasFree) {
    for (const auto& [number, names] : unfollowedFrom_) {
      if (number != file.number && names.contains(file.url)) losesItsName_.insert(number);
    }
    const auto status = fileStatus(file.url);
    const bool isNew = world_.isListed() || (status && status->modified >= listensSince_);
    const bool isHeard = wasFree && isNew && file.isCapture && program_.isRunning() && world_.isMounted &&
                         file.url.parent() == world_.folder && world_.now() >= listensSince_;
    if (isHeard) {
      arrivals_.insert(file.number);
    } else {
      arrivals_.erase(file.number);
    }
  }
  /// The dates of files that nobody has heard of say nothing any more.
  void setClock() {
    std::erase_if(arrivals_, [&](int number) { return !recorded_.contains(number); });
  }
  /// A file has another name in the folder. If nobody has heard of it yet, it is news under a free name alone.
  void renamed(const HistoryWorld::File& file, bool wasFree) {
    if (!wasFree) arrivals_.erase(file.number);
  }
  /// A Temporary file that was written to is not what was judged: when its time is up it stays and its record goes.
  void resized(const HistoryWorld::File& file) { resized_.insert(file.number); }
  /// Only its inode tells where the file is now. That is not asked any more once another file has the old name, or when
  /// the record's time is up before anyone has looked.
  void renamedUnfollowed(const HistoryWorld::File& file, const FileURL& from) {
    unfollowedFrom_[file.number].insert(from);
  }
  void swapped(const HistoryWorld::File& a, const HistoryWorld::File& b) {
    renamed(a, false);
    renamed(b, false);
    losesItsName_.insert({a.number, b.number});
  }
  void left(const HistoryWorld::File& file) {
    arrivals_.erase(file.number);
    recorded_.erase(file.number);
  }
  /// What had not been heard yet is old when the program starts again; after a killed run what came since then is not.
  void restarts(std::optional<Date> interruptedSince) {
    world_.forgetListing();
    listensSince_ = std::max(world_.now(), interruptedSince.value_or(world_.now()));
    std::erase_if(arrivals_, [&](int number) {
      const auto status = fileStatus(world_.find(number)->url);
      return !interruptedSince || !status || status->modified < *interruptedSince;
    });
  }

  // --- What has to be so at any time ---

  void judgeNow() {
    if (!program_.isRunning()) return;
    const auto records = program_.records();
    for (const ScreenshotItem& item : records) {
      const HistoryWorld::File* file = fileOf(item);
      if (file && file->url == item.url && file->url.parent() == world_.folder) recorded_.insert(file->number);
      if ((item.state == ScreenshotItem::State::temporary) != item.expiresAt.has_value()) {
        fail("a record is Temporary when it has a moment of expiry, and only then", item.url.path());
      }
    }
    judgeQueue();
    if (!program_.model->hasPendingSave() && program_.savedRecords() != records) {
      fail("the list on the disk is the list in memory", std::to_string(records.size()) + " records in memory");
    }
  }
  /// After a start, when its first reconciliation is over.
  void judgeStart() {
    std::vector<UUID> expected;
    for (const ScreenshotItem& item : program_.records()) {
      const bool isAsked =
          item.state == ScreenshotItem::State::pending && !program_.model->unavailableItemIDs->contains(item.id);
      if (isAsked) expected.push_back(item.id);
    }
    const auto& queue = *program_.model->prompts().queue;
    // Those of one moment come in any order; so do all when the clock was set back.
    const bool isAfterAll = std::all_of(queue.begin(), queue.end(), [&](const UUID& id) {
      return program_.model->items().find(id)->createdAt < program_.startedAt;
    });
    const bool isInOrder =
        std::is_permutation(expected.begin(), expected.end(), queue.begin(), queue.end()) &&
        (!isAfterAll || std::is_sorted(queue.begin(), queue.end(), [&](const UUID& a, const UUID& b) {
          return program_.model->items().find(a)->createdAt < program_.model->items().find(b)->createdAt;
        }));
    if (!isInOrder) {
      fail("pending screenshots come back as popups, oldest first",
           "pending:" + namesOf(expected) + "; in the queue:" + namesOf(queue));
    }
  }

  // --- What has to be so when everything has settled ---

  void judgeSettled() {
    std::map<std::string, std::string> places;
    int mostOpen = 1;  // the folder itself
    for (const ScreenshotItem& item : program_.records()) {
      const std::string name = item.url.lastPathComponent();
      if (item.url.parent() != world_.folder) ++mostOpen;
      if (!places.emplace(item.url.path(), name).second) fail("no file has two records", name);
      if (item.url.parent() == world_.folder && !world_.at(item.url)) fail("no record outlives its file", name);
      if (item.state == ScreenshotItem::State::temporary) judgeTemporary(item);
    }
    if (program_.scope.openCount() > mostOpen) {
      fail("no access outlives its record", std::to_string(program_.scope.openCount()) + " are open");
    }
    for (HistoryWorld::File& file : world_.files()) {
      if (file.url.isEmpty()) continue;
      if (!fileExists(file.url)) fail("no file is lost", describe(file));
      const bool wasTemporary = temporary_.contains(file.number);
      const bool mayBeForgotten =
          (resized_.contains(file.number) && wasTemporary) ||
          (unfollowedFrom_.contains(file.number) && (wasTemporary || losesItsName_.contains(file.number)));
      const bool isExpected = !mayBeForgotten && (arrivals_.contains(file.number) || recorded_.contains(file.number));
      if (isExpected && file.url.parent() == world_.folder && !places.contains(file.url.path())) {
        fail("every screenshot that came while the program ran has its record", describe(file));
      }
    }
  }
  void judgeEnd() {
    if (program_.scope.openCount() != 0 || program_.scope.isOverstopped) {
      fail("no access is left open", std::to_string(program_.scope.openCount()) + " are open");
    }
  }

 private:
  struct Choice {
    Date expiresAt;
    FileURL place;
  };

  /// The file that a record was made of, wherever it is. No two are born at the same moment.
  const HistoryWorld::File* fileOf(const ScreenshotItem& item) {
    if (!item.fileIdentity) return world_.at(world_.folder.appending(item.url.lastPathComponent()));
    for (const HistoryWorld::File& file : world_.files()) {
      if (item.fileIdentity->creationDate == file.born) return &file;
    }
    return nullptr;
  }
  std::string namesOf(const std::vector<UUID>& ids) const {
    std::string names;
    for (const UUID& id : ids) {
      const ScreenshotItem* item = program_.model->items().find(id);
      names += item ? " " + item->url.lastPathComponent() + " of " + std::to_string(item->createdAt.seconds) : " none";
    }
    return names;
  }
  void judgeQueue() {
    const auto& queue = *program_.model->prompts().queue;
    const std::optional<UUID> head = queue.empty() ? std::nullopt : std::optional(queue.front());
    if (head != program_.presenter.visible) fail("the popup shows the head of the queue", "");
    for (const UUID& id : queue) {
      const ScreenshotItem* item = program_.model->items().find(id);
      if (!item || item->state != ScreenshotItem::State::pending) fail("the queue holds pending records alone", "");
    }
  }
  void judgeDisposal(const HistoryWorld::File& file) {
    left(file);
    if (chosenForTrash_.contains(file.number)) return;
    const auto name = namesMadeTemporary_.find(file.url.lastPathComponent());
    if (name != namesMadeTemporary_.end() && world_.now() >= name->second) return;
    const auto choice = temporary_.find(file.number);
    const char* rule = "only a due Temporary file is thrown away, in its place";
    if (choice == temporary_.end()) {
      fail(rule, describe(file) + " was not Temporary");
    } else if (world_.now() < choice->second.expiresAt) {
      fail(rule, describe(file) + " was not due");
    } else if (file.url.parent() != world_.folder || !world_.isMounted) {
      fail(rule, describe(file) + " was outside the watched folder");
    } else if (file.url != choice->second.place) {
      fail(rule, describe(file) + " had been renamed");
    }
  }
  void judgeTemporary(const ScreenshotItem& item) {
    const HistoryWorld::File* file = fileOf(item);
    if (!file || file->url != item.url) return;
    const auto choice = temporary_.find(file->number);
    if (choice == temporary_.end()) {
      fail("a record is Temporary only by the person's choice", describe(*file));
    } else if (choice->second.place != file->url) {
      fail("a Temporary screenshot that the person moved is kept", describe(*file));
    } else if (world_.now() - *item.expiresAt > kMostLateness) {
      fail("what is due goes to Trash", describe(*file));
    }
  }

  static constexpr double kMostLateness = 60;

  HistoryWorld& world_;
  HistoryProgram& program_;
  std::optional<HistoryFailure> failure_;
  std::map<int, Choice> temporary_;                 ///< by the number of the file
  std::map<std::string, Date> namesMadeTemporary_;  ///< of records that knew no file
  std::multiset<int> chosenForTrash_;
  Date listensSince_;       ///< older files are known, which a clock that was set back makes of new ones
  std::set<int> arrivals_;  ///< came while the program ran, to a name that it knew to be free
  std::set<int> recorded_;  ///< had a record once, and have stayed in the folder
  std::set<int> resized_;
  std::map<int, std::set<FileURL>> unfollowedFrom_;
  std::set<int> losesItsName_;  ///< another file has a name that it had
};

}  // namespace quillmere::testing
