#include "model/Reconciliation.h"

#include <atomic>

#include "fakes/ModelFakes.h"
#include "model/ReconciliationWork.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class ReconciliationTest : public ::testing::Test {
 protected:
  ReconciliationTest() {
    std::filesystem::create_directories(shots.path());
    std::filesystem::create_directories(elsewhere.path());
    world.watchFolder = shots;
    world.watchFolderPaths = watchFolderPaths(shots);
    world.hasFolderAccess = true;
    world.scope = &scope;
    world.isInTrash = [](const FileURL& url) { return url.path().find("/trash/") != std::string::npos; };
    world.fileIdentity = [this](const FileURL& url) -> std::optional<FileIdentity> {
      ++identityReads;
      const auto status = fileStatus(url);
      if (!status) return std::nullopt;
      FileIdentity identity{"volume", status->inode, Date{1000}, status->size};
      if (changeIdentity) changeIdentity(identity);
      return identity;
    };
    world.isVolumeMounted = [this](const FileURL&) { return isDiskThere; };
    world.isFolderReachable = [this](const FileURL& url) {
      ++reachableCalls;
      return isReachable && isReadableDirectory(url);
    };
    world.isDataless = [this](const FileURL&) { return isDataless; };
    world.isUbiquitous = [this](const FileURL&) { return isUbiquitous; };
  }
  ~ReconciliationTest() override {
    EXPECT_EQ(scope.openCount(), 0) << "a run closes what it opened";
    EXPECT_EQ(scope.stopsWithoutStart, 0);
  }

  FileURL write(const FileURL& folder, const char* name) {
    writeFile(folder.appending(name), name);
    return folder.appending(name);
  }
  ReconcileInput input(const FileURL& url) { return {uuid(1), url, std::nullopt, std::nullopt}; }
  /// With the identity that the file has while it is still there.
  ReconcileInput identified(const FileURL& url) { return {uuid(1), url, std::nullopt, world.fileIdentity(url)}; }
  ReconcileInput bookmarked(const FileURL& url) {
    return {uuid(1), url, FakeSecurityScope::bookmarkOf(url), std::nullopt};
  }
  ReconcileOutcome resolve(const ReconcileInput& one) { return resolveOutcomes({one}, world).at(one.id); }
  const FilePresent* present(const ReconcileOutcome& outcome) { return std::get_if<FilePresent>(&outcome); }

  TemporaryFolder home;
  const FileURL shots = home.file("shots");
  const FileURL elsewhere = home.file("elsewhere");
  CallLog log;
  FakeSecurityScope scope{log};
  ReconcileEnvironment world;
  bool isReachable = true;
  bool isDiskThere = true;
  bool isDataless = false;
  bool isUbiquitous = false;
  int identityReads = 0;
  int reachableCalls = 0;
  std::function<void(FileIdentity&)> changeIdentity;
};

TEST_F(ReconciliationTest, StoredPlaceInTrashIsGone) {
  std::filesystem::create_directories(home.file("trash").path());
  EXPECT_EQ(resolve(input(write(home.file("trash"), "shot.png"))), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, BookmarkIntoTrashIsGoneEvenIfAnotherFileTookThePlace) {
  const FileURL url = write(shots, "shot.png");
  std::filesystem::create_directories(home.file("trash").path());
  scope.follow(url, write(home.file("trash"), "shot.png"));
  EXPECT_EQ(resolve(bookmarked(url)), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, FileWhereItsBookmarkSaysIsScoped) {
  const FileURL url = write(shots, "shot.png");
  const FilePresent expected{url, url, std::nullopt, world.fileIdentity(url), false, false, false};
  EXPECT_EQ(resolve(bookmarked(url)), ReconcileOutcome(expected));
  EXPECT_EQ(scope.starts, 1);
}

TEST_F(ReconciliationTest, StaleBookmarkGivesTheNewPlaceAndANewBookmark) {
  const FileURL before = shots.appending("shot.png");
  const FileURL after = write(elsewhere, "renamed.png");
  scope.follow(before, after);
  const FilePresent expected{after, after, FakeSecurityScope::bookmarkOf(after), world.fileIdentity(after), false,
                             false, false};
  EXPECT_EQ(resolve(bookmarked(before)), ReconcileOutcome(expected));
  EXPECT_EQ(scope.starts, 2) << "once to renew, once to look";
}

TEST_F(ReconciliationTest, BookmarkThatDoesNotResolveCountsAsNone) {
  const FileURL url = write(shots, "shot.png");
  scope.lose(url);
  const FilePresent expected{url, std::nullopt, std::nullopt, world.fileIdentity(url), false, false, false};
  EXPECT_EQ(resolve(bookmarked(url)), ReconcileOutcome(expected));
}

TEST_F(ReconciliationTest, BookmarkToANamelessPlaceFallsBackToTheStoredOne) {
  const FileURL url = write(shots, "shot.png");
  scope.follow(url, elsewhere.appending("not there.png"));
  const auto outcome = resolve(bookmarked(url));
  ASSERT_TRUE(present(outcome));
  EXPECT_EQ(present(outcome)->url, url);
  EXPECT_EQ(present(outcome)->scopedURL, std::nullopt);
  EXPECT_TRUE(present(outcome)->refreshedBookmark);
}

TEST_F(ReconciliationTest, AccessThatIsRefusedIsNotEnded) {
  const FileURL url = write(shots, "shot.png");
  scope.refusesAccess.insert(url.path());
  EXPECT_TRUE(present(resolve(bookmarked(url))));
  EXPECT_EQ(scope.stops, 0);
}

TEST_F(ReconciliationTest, OnlyAnEvictedFileIsAskedForItsCloud) {
  const FileURL url = write(shots, "shot.png");
  isUbiquitous = true;
  EXPECT_FALSE(present(resolve(input(url)))->isICloud);
  isDataless = true;
  EXPECT_TRUE(present(resolve(input(url)))->isEvicted);
  EXPECT_TRUE(present(resolve(input(url)))->isICloud);
  isUbiquitous = false;
  EXPECT_TRUE(present(resolve(bookmarked(url)))->isEvicted);
  EXPECT_FALSE(present(resolve(bookmarked(url)))->isICloud);
}

// --- The search by identity ---

TEST_F(ReconciliationTest, RenamedFileIsFoundByItsIdentity) {
  const auto before = identified(write(shots, "shot.png"));
  std::filesystem::rename(before.url.path(), shots.appending("renamed.png").path());
  const auto outcome = resolve(before);
  ASSERT_TRUE(present(outcome));
  EXPECT_EQ(present(outcome)->url.path(), world.watchFolderPaths->canonical + "/renamed.png");
  EXPECT_TRUE(present(outcome)->foundByIdentity);
  EXPECT_EQ(present(outcome)->identity, before.identity);
}

TEST_F(ReconciliationTest, FileMovedIntoTheFolderIsFoundByItsIdentity) {
  const auto before = identified(write(elsewhere, "shot.png"));
  std::filesystem::rename(before.url.path(), shots.appending("shot.png").path());
  EXPECT_TRUE(present(resolve(before)));
}

TEST_F(ReconciliationTest, TrackedPathIsSkippedForAnotherLinkToTheFile) {
  const auto before = identified(write(shots, "shot.png"));
  std::filesystem::create_hard_link(before.url.path(), shots.appending("tracked.png").path());
  std::filesystem::rename(before.url.path(), shots.appending("free.png").path());
  world.trackedPaths = {world.watchFolderPaths->canonical + "/tracked.png"};
  const auto outcome = resolve(before);
  ASSERT_TRUE(present(outcome));
  EXPECT_EQ(present(outcome)->url.lastPathComponent(), "free.png");
  world.trackedPaths.insert(world.watchFolderPaths->canonical + "/free.png");
  EXPECT_EQ(resolve(before), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, WhetherAFolderIsATrashIsAskedOnceForNeighbours) {
  int questions = 0;
  world.isInTrash = [&](const FileURL& url) {
    ++questions;
    return url.path().find("/trash/") != std::string::npos;
  };
  std::vector<ReconcileInput> inputs;
  for (const char* name : {"a.png", "b.png", "c.png"}) inputs.push_back(input(write(shots, name)));
  inputs.push_back(input(FileURL::fromPath("/trash/d.png")));
  for (size_t place = 0; place < inputs.size(); ++place) inputs[place].id = uuid(static_cast<int>(place));
  const auto outcomes = resolveOutcomes(inputs, world);
  EXPECT_EQ(questions, 2);
  EXPECT_TRUE(present(outcomes.at(uuid(2))));
  EXPECT_EQ(outcomes.at(uuid(3)), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, NothingIsLookedAtAnyMoreAfterItWasStopped) {
  std::atomic<bool> isStopped = false;
  std::vector<ReconcileInput> inputs;
  for (const char* name : {"a.png", "b.png", "c.png"}) inputs.push_back(input(write(shots, name)));
  for (size_t place = 0; place < inputs.size(); ++place) inputs[place].id = uuid(static_cast<int>(place));
  world.isDataless = [&](const FileURL& url) {
    if (url == inputs[1].url) isStopped = true;
    return false;
  };
  const auto outcomes = resolveOutcomes(inputs, world, isStopped);
  EXPECT_TRUE(outcomes.contains(uuid(0)));
  EXPECT_TRUE(outcomes.contains(uuid(1)));
  EXPECT_FALSE(outcomes.contains(uuid(2)));
}

TEST_F(ReconciliationTest, AFileThatDiffersInOnePartIsAnother) {
  struct Row {
    const char* part;
    std::function<void(FileIdentity&)> change;
    bool isFound;
  };
  const Row rows[] = {
      {"nothing", [](FileIdentity&) {}, true},
      {"volume", [](FileIdentity& identity) { identity.volume = "other"; }, false},
      {"number", [](FileIdentity& identity) { ++identity.file; }, false},
      {"size", [](FileIdentity& identity) { identity.size = *identity.size + 1; }, false},
      {"creation by 0.0009 s", [](FileIdentity& identity) { identity.creationDate = Date{1000.0009}; }, true},
      {"creation by 0.001 s", [](FileIdentity& identity) { identity.creationDate = Date{1000.001}; }, false},
      {"no volume", [](FileIdentity& identity) { identity.volume.reset(); }, false},
      {"no creation date", [](FileIdentity& identity) { identity.creationDate.reset(); }, false},
      {"no size", [](FileIdentity& identity) { identity.size.reset(); }, false},
  };
  const auto before = identified(write(shots, "shot.png"));
  std::filesystem::rename(before.url.path(), shots.appending("renamed.png").path());
  for (const Row& row : rows) {
    changeIdentity = row.change;
    EXPECT_EQ(present(resolve(before)) != nullptr, row.isFound) << row.part;
  }
}

TEST_F(ReconciliationTest, AnIncompleteStoredIdentityIsNotSearchedFor) {
  auto before = identified(write(shots, "shot.png"));
  std::filesystem::rename(before.url.path(), shots.appending("renamed.png").path());
  before.identity->volume.reset();
  identityReads = 0;
  EXPECT_EQ(resolve(before), ReconcileOutcome(FileGone{}));
  EXPECT_EQ(identityReads, 0);
}

TEST_F(ReconciliationTest, OfAPlaceThatSeveralRecordsHaveOnlyAWholeIdentityThatDiffersTakesTheFile) {
  auto one = identified(write(shots, "shot.png"));
  world.sharedPaths.insert(pathKey(one.url, world.watchFolderPaths));
  EXPECT_TRUE(present(resolve(one)));
  one.identity->file += 1;
  EXPECT_FALSE(present(resolve(one)));
  one.identity->size.reset();
  EXPECT_TRUE(present(resolve(one))) << "it cannot be told";
  one.identity.reset();
  EXPECT_TRUE(present(resolve(one)));
}

TEST_F(ReconciliationTest, NoDirectoryIsReadWhileEveryFileIsInPlace) {
  std::vector<ReconcileInput> inputs;
  for (int i = 0; i < 20; ++i) {
    inputs.push_back(identified(write(shots, std::to_string(i).c_str())));
    inputs.back().id = uuid(i);
  }
  ASSERT_EQ(::chmod(shots.c_str(), 0700), 0);
  reachableCalls = 0;
  EXPECT_EQ(resolveOutcomes(inputs, world).size(), 20u);
  EXPECT_EQ(reachableCalls, 0);
}

TEST_F(ReconciliationTest, AFileIsNotGoneWhenItsDiskLeftWhileItWasLookedFor) {
  world.isFolderReachable = [this](const FileURL&) { return ++reachableCalls == 1; };
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileUnavailable{}));
}

TEST_F(ReconciliationTest, AFileOfAnotherDiskUnderTheNameIsNotTheRecords) {
  const FileURL shot = write(shots, "shot.png");
  isDiskThere = false;
  EXPECT_EQ(resolve(bookmarked(shot)), ReconcileOutcome(FileUnavailable{}));
  EXPECT_TRUE(present(resolve(input(write(elsewhere, "shot.png"))))) << "it has its own disk";
}

TEST_F(ReconciliationTest, TheFolderIsJudgedBeforeAndAfterARun) {
  std::vector<ReconcileInput> inputs;
  for (int i = 0; i < 20; ++i) {
    inputs.push_back(identified(write(shots, std::to_string(i).c_str())));
    inputs.back().id = uuid(i);
    std::filesystem::remove(inputs.back().url.path());
  }
  reachableCalls = 0;
  for (const auto& [id, outcome] : resolveOutcomes(inputs, world)) EXPECT_EQ(outcome, ReconcileOutcome(FileGone{}));
  EXPECT_EQ(reachableCalls, 2);
}

// --- Nothing found ---

TEST_F(ReconciliationTest, VanishedFileOfTheWatchedFolderIsGone) {
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, VanishedFileUnderTheCanonicalPathOfTheFolderIsGoneToo) {
  std::filesystem::create_directory_symlink(shots.path(), home.file("link").path());
  world.watchFolder = home.file("link");
  world.watchFolderPaths = watchFolderPaths(home.file("link"));
  EXPECT_EQ(resolve(input(home.file("link").appending("shot.png"))), ReconcileOutcome(FileGone{}));
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileGone{}));
}

TEST_F(ReconciliationTest, VanishedFileWithNoFolderAccessIsUnavailable) {
  world.hasFolderAccess = false;
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileUnavailable{}));
}

TEST_F(ReconciliationTest, VanishedFileOfAFolderThatCannotBeReachedIsUnavailable) {
  isReachable = false;
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileUnavailable{}));
}

TEST_F(ReconciliationTest, VanishedFileOutsideTheFolderIsUnavailable) {
  EXPECT_EQ(resolve(input(elsewhere.appending("shot.png"))), ReconcileOutcome(FileUnavailable{}));
  EXPECT_EQ(resolve(input(shots.appending("deeper/shot.png"))), ReconcileOutcome(FileUnavailable{}));
}

TEST_F(ReconciliationTest, WithNoFolderAVanishedFileIsUnavailable) {
  world.watchFolder.reset();
  world.watchFolderPaths.reset();
  EXPECT_EQ(resolve(input(shots.appending("shot.png"))), ReconcileOutcome(FileUnavailable{}));
}

}  // namespace
}  // namespace quillmere::testing
