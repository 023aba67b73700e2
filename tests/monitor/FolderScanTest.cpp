#include "monitor/FolderScan.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "records/PictureFormat.h"
#include "support/ChildProcess.h"
#include "support/FakeScanServices.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::FakeScanServices;
using testing::TemporaryFolder;
using testing::writeFile;

constexpr Date kNow{725857445.0};

class FolderScanTest : public ::testing::Test {
 protected:
  FolderScanTest() {
    snapshot.directory = folder.url();
    snapshot.full = true;
    snapshot.services = services.services();
    services->anyFile.dates.created = kNow;
  }

  FileURL make(const std::string& name, Date modified = kNow, std::string_view bytes = "bytes") {
    const FileURL url = folder.file(name);
    writeFile(url, bytes);
    testing::setModified(url, modified);
    return url;
  }
  void know(const std::vector<FileURL>& urls) {
    URLSet known;
    for (const auto& url : urls) known.insert(url);
    snapshot.known = std::make_shared<const URLSet>(std::move(known));
  }
  /// The file was looked at before and has not changed since.
  void havePending(const FileURL& url, ArrivalEvidence evidence = {kNow, 0, false}, bool complete = false) {
    snapshot.pending[url] = {*readFingerprint(url), complete};
    snapshot.evidence[url] = evidence;
  }
  std::vector<std::string> observedNames() {
    std::vector<std::string> names;
    const ScanResult result = performScan(snapshot);
    for (const auto& seen : result.observations.value()) names.push_back(seen.url.lastPathComponent());
    std::sort(names.begin(), names.end());
    return names;
  }
  Observation onlyObservation() {
    const ScanResult result = performScan(snapshot);
    EXPECT_TRUE(result.observations);
    EXPECT_EQ(result.observations->size(), 1u);
    return result.observations->empty() ? Observation{} : result.observations->front();
  }

  const TemporaryFolder folder;
  FakeScanServices services;
  Snapshot snapshot;
};

// --- Which files are looked at ---

TEST_F(FolderScanTest, FilesOfTheFiveTypesInAnyCaseAreWatched) {
  const std::vector<std::string> names{"a.HEIC", "b.heif", "c.JPG", "d.jpeg", "e.PnG", "f.x.png"};
  for (const auto& name : names) make(name);
  for (const char* other : {"g.gif", "h.tiff", "i.txt", "png", "j.png.txt", "k.", "l.pngx", "m.jpe"}) make(other);
  EXPECT_EQ(observedNames(), names);
}

TEST_F(FolderScanTest, HiddenFilesAreNeverWatched) {
  make(".a.png");
  make(".png");
  EXPECT_TRUE(observedNames().empty());
}

TEST_F(FolderScanTest, OnlyRegularFilesAreWatched) {
  const auto real = make("real.png");
  ASSERT_EQ(::mkdir(folder.file("folder.png").c_str(), 0700), 0);
  ASSERT_EQ(::symlink(real.c_str(), folder.file("link.png").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", folder.file("dangling.png").c_str()), 0);
  ASSERT_EQ(::mkfifo(folder.file("pipe.png").c_str(), 0600), 0);
  EXPECT_EQ(observedNames(), std::vector<std::string>{"real.png"});
  EXPECT_EQ(readFingerprint(folder.file("folder.png")), std::nullopt);
  EXPECT_EQ(readFingerprint(folder.file("link.png")), std::nullopt);
  EXPECT_EQ(readFingerprint(folder.file("absent.png")), std::nullopt);
}

TEST_F(FolderScanTest, FoldersBelowAreNotEntered) {
  ASSERT_EQ(::mkdir(folder.file("below").c_str(), 0700), 0);
  make("below/a.png");
  EXPECT_TRUE(observedNames().empty());
}

TEST_F(FolderScanTest, WatchedNamesAreToldByTheirEnd) {
  for (const char* name : {"a.png", "a.PNG", "a b.Jpg", "a.b.heic", "\xff.heif", "\n.jpeg"}) {
    EXPECT_TRUE(isWatchedName(name)) << name;
  }
  for (const char* name : {"", ".", ".png", ".a.png", "png", "a.pn", "a.pngg", "a.png ", "a.png.", "a.gif", "a.tif"}) {
    EXPECT_FALSE(isWatchedName(name)) << name;
  }
}

TEST_F(FolderScanTest, EachPictureFormatIsWatched) {
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      EXPECT_TRUE(isWatchedName("a." + std::string(extension))) << extension;
    }
  }
}

TEST_F(FolderScanTest, NamesOfAnyBytesAreSeenAsTheyAre) {
  const std::vector<std::string> names{"\n\t.png", "\xff\xfe.png", std::string(251, 'n') + ".png", "ü 截图.png"};
  for (const auto& name : names) make(name);
  EXPECT_EQ(observedNames(), [&] {
    auto sorted = names;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }());
}

TEST_F(FolderScanTest, FingerprintIsSizeAndModificationDate) {
  const auto url = make("a.png", {700000000.5}, "12345");
  EXPECT_EQ(readFingerprint(url), (Fingerprint{5, {700000000.5}}));
  EXPECT_EQ(onlyObservation().fingerprint, (Fingerprint{5, {700000000.5}}));
}

// --- Folders that cannot be listed ---

TEST_F(FolderScanTest, FolderThatIsGoneFromAMountedVolumeIsNotFound) {
  snapshot.directory = folder.file("absent");
  know({folder.file("absent/a.png")});
  const ScanResult result = performScan(snapshot);
  EXPECT_FALSE(result.observations);
  EXPECT_EQ(result.unavailable, WatcherStatus::notFound);
  EXPECT_TRUE(result.removed.empty() && result.baseline.empty() && result.absentPending.empty());
}

TEST_F(FolderScanTest, FolderOfAVolumeThatIsAwayIsNotConnectedAndLosesNothing) {
  services->isMounted = false;
  know({folder.file("a.png")});
  const ScanResult result = performScan(snapshot);
  EXPECT_FALSE(result.observations);
  EXPECT_EQ(result.unavailable, WatcherStatus::volumeNotConnected);
  EXPECT_TRUE(result.removed.empty());
}

TEST_F(FolderScanTest, FileInTheFoldersPlaceIsNotFound) {
  snapshot.directory = make("a.png");
  EXPECT_EQ(performScan(snapshot).unavailable, WatcherStatus::notFound);
}

// --- Baseline ---

TEST_F(FolderScanTest, BaselineIsWhatIsStrictlyOlderThanItsStart) {
  const auto older = make("older.png", kNow + -0.001);
  make("exactly.png", kNow);
  make("later.png", kNow + 1);
  snapshot.baselineStart = kNow;
  const ScanResult result = performScan(snapshot);
  EXPECT_EQ(result.baseline, URLSet{older});
  EXPECT_EQ(observedNames(), (std::vector<std::string>{"exactly.png", "later.png"}));
}

TEST_F(FolderScanTest, BaselineReportsNoRemovalWhateverWasKnown) {
  make("a.png", kNow + -5);
  know({folder.file("gone.png"), folder.file("a.png")});
  snapshot.baselineStart = kNow;
  const ScanResult result = performScan(snapshot);
  EXPECT_TRUE(result.removed.empty());
  EXPECT_EQ(result.baseline, URLSet{folder.file("a.png")});
}

TEST_F(FolderScanTest, BaselineDoesNotSkipWhatWasKnownBefore) {
  make("a.png", kNow + 5);
  know({folder.file("a.png")});
  snapshot.baselineStart = kNow;
  EXPECT_EQ(observedNames(), std::vector<std::string>{"a.png"});
}

TEST_F(FolderScanTest, FilesOfTheBaselineAreNotExamined) {
  havePending(make("a.png", kNow + -5));
  snapshot.baselineStart = kNow;
  performScan(snapshot);
  EXPECT_EQ(services->examinations(), 0);
}

// --- Known, removed and absent ---

TEST_F(FolderScanTest, KnownFilesAreNotObserved) {
  know({make("known.png")});
  make("new.png");
  EXPECT_EQ(observedNames(), std::vector<std::string>{"new.png"});
}

TEST_F(FolderScanTest, RemovedAreTheKnownThatAreGoneSortedByPath) {
  know({folder.file("c.png"), folder.file("a.png"), make("here.png"), folder.file("b.png")});
  EXPECT_EQ(performScan(snapshot).removed,
            (std::vector{folder.file("a.png"), folder.file("b.png"), folder.file("c.png")}));
}

TEST_F(FolderScanTest, KnownFileThatBecameAFolderIsGone) {
  ASSERT_EQ(::mkdir(folder.file("a.png").c_str(), 0700), 0);
  know({folder.file("a.png")});
  EXPECT_EQ(performScan(snapshot).removed, std::vector{folder.file("a.png")});
}

TEST_F(FolderScanTest, TablesAreToldWhatIsNoLongerListed) {
  const auto here = make("here.png");
  const auto gone = folder.file("gone.png");
  for (const auto& url : {here, gone}) {
    snapshot.pending[url] = {};
    snapshot.ignored[url] = {};
    snapshot.evidence[url] = {};
  }
  const ScanResult result = performScan(snapshot);
  EXPECT_EQ(result.absentPending, std::vector{gone});
  EXPECT_EQ(result.absentIgnored, std::vector{gone});
  EXPECT_EQ(result.absentEvidence, std::vector{gone});
}

TEST_F(FolderScanTest, PartialScanLooksAtThePendingFilesAlone) {
  const auto pending = make("pending.png");
  make("other.png");
  havePending(pending);
  snapshot.evidence[folder.file("gone.png")] = {};
  know({folder.file("known.png")});
  snapshot.full = false;
  const ScanResult result = performScan(snapshot);
  EXPECT_EQ(observedNames(), std::vector<std::string>{"pending.png"});
  EXPECT_TRUE(result.removed.empty() && result.baseline.empty() && result.absentPending.empty() &&
              result.absentIgnored.empty() && result.absentEvidence.empty());
}

TEST_F(FolderScanTest, PartialScanTellsThatAPendingFileIsGone) {
  const auto url = make("a.png");
  havePending(url);
  ASSERT_EQ(::unlink(url.c_str()), 0);
  snapshot.full = false;
  EXPECT_EQ(onlyObservation().fingerprint, std::nullopt);
}

TEST_F(FolderScanTest, PartialScanDoesNotAskForTheVolume) {
  services->isMounted = false;
  havePending(make("a.png"));
  snapshot.full = false;
  EXPECT_TRUE(onlyObservation().decodesCompletely.value_or(false));
}

TEST_F(FolderScanTest, ListedFileThatCannotBeLookedAtHasNoFingerprint) {
  make("a.png");
  ASSERT_EQ(::chmod(folder.path().c_str(), 0744), 0);  // others may list it and nothing else
  EXPECT_EQ(testing::exitCodeOfChild([&] {
              if (!testing::becomeOrdinaryUser()) return testing::kCannotSetUp;
              snapshot.pending[folder.file("a.png")] = {};
              const ScanResult result = performScan(snapshot);
              if (!result.observations || result.observations->size() != 1) return 1;
              if (result.observations->front().fingerprint) return 2;
              if (!result.absentPending.empty()) return 3;
              snapshot.baselineStart = kNow;
              return performScan(snapshot).baseline.size() == 1 ? 0 : 4;
            }),
            0);
}

// --- When a file is examined ---

TEST_F(FolderScanTest, FirstLookExaminesNothing) {
  make("a.png");
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, std::nullopt);
  EXPECT_EQ(seen.isScreenCapture, std::nullopt);
  EXPECT_FALSE(seen.isPlaceholder);
  EXPECT_EQ(seen.evidence, std::nullopt);
  EXPECT_EQ(services->examinations(), 0);
}

TEST_F(FolderScanTest, FileThatHeldStillIsDecodedAndClassified) {
  havePending(make("a.png"));
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, true);
  EXPECT_EQ(seen.isScreenCapture, true);
  EXPECT_EQ(seen.evidence, (ArrivalEvidence{kNow, 0, false}));
}

TEST_F(FolderScanTest, FileThatChangedIsNotExamined) {
  const auto url = make("a.png");
  havePending(url);
  for (const bool changesSize : {true, false}) {
    if (changesSize) testing::appendToFile(url, "more");
    testing::setModified(url, changesSize ? kNow : kNow + 1);
    EXPECT_EQ(onlyObservation().decodesCompletely, std::nullopt);
    EXPECT_EQ(services->examinations(), 0);
    havePending(url);
  }
}

TEST_F(FolderScanTest, IgnoredFileIsExaminedOnlyOnceItChanged) {
  const auto url = make("a.png");
  havePending(url);
  snapshot.ignored[url] = *readFingerprint(url);
  EXPECT_EQ(onlyObservation().decodesCompletely, std::nullopt);
  snapshot.ignored[url].size += 1;
  EXPECT_EQ(onlyObservation().decodesCompletely, true);
}

TEST_F(FolderScanTest, FileWithoutEvidenceIsNotExamined) {
  havePending(make("a.png"));
  snapshot.evidence.clear();
  EXPECT_EQ(onlyObservation().evidence, std::nullopt);
  EXPECT_EQ(services->examinations(), 0);
}

TEST_F(FolderScanTest, EmptyFileIsNotDecoded) {
  havePending(make("a.png", kNow, ""));
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, std::nullopt);
  EXPECT_EQ(seen.isScreenCapture, std::nullopt);
  EXPECT_TRUE(seen.evidence);
  EXPECT_EQ(services->examinations(), 0);
}

TEST_F(FolderScanTest, FileOfOneByteIsDecoded) {
  havePending(make("a.png", kNow, "x"));
  EXPECT_EQ(onlyObservation().decodesCompletely, true);
}

TEST_F(FolderScanTest, FileThatDoesNotDecodeIsNotClassified) {
  havePending(make("a.png"));
  services->anyFile.decodes = false;
  services->anyFile.dates.created = kNow + -1000;
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, false);
  EXPECT_EQ(seen.evidence, (ArrivalEvidence{kNow, 0, false}));
}

TEST_F(FolderScanTest, FileWithoutAMarkIsNeverDecoded) {
  havePending(make("a.png"));
  services->anyFile.isTagged = false;
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.isScreenCapture, false);
  EXPECT_EQ(seen.decodesCompletely, std::nullopt);
  EXPECT_TRUE(services->decodeCalls.empty());
  snapshot.includesNonCaptureImages = true;
  EXPECT_EQ(onlyObservation().decodesCompletely, true);
}

TEST_F(FolderScanTest, FileThatDecodedOnceIsNotDecodedAgain) {
  havePending(make("a.png"), {kNow, 0, false}, true);
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, std::nullopt);
  EXPECT_EQ(seen.isScreenCapture, true);
  EXPECT_TRUE(services->decodeCalls.empty());
  EXPECT_TRUE(services->datalessCalls.empty());
}

TEST_F(FolderScanTest, WithOtherImagesIncludedTheTagIsNotRead) {
  havePending(make("a.png"));
  snapshot.includesNonCaptureImages = true;
  EXPECT_EQ(onlyObservation().isScreenCapture, std::nullopt);
  EXPECT_TRUE(services->tagCalls.empty());
}

// --- Dataless files ---

TEST_F(FolderScanTest, FirstLookAtAFileWithoutDataOnlyCountsIt) {
  havePending(make("a.png"));
  services->anyFile.isDataless = true;
  services->isSynced = true;
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.decodesCompletely, false);
  EXPECT_EQ(seen.evidence, (ArrivalEvidence{kNow, 1, false}));
  EXPECT_FALSE(seen.isPlaceholder);
  EXPECT_TRUE(services->decodeCalls.empty());
}

TEST_F(FolderScanTest, SecondLookAtAFileWithoutDataInASyncedFolderMakesItAPlaceholder) {
  havePending(make("a.png"), {kNow, 1, false});
  services->anyFile.isDataless = true;
  services->isSynced = true;
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.evidence, (ArrivalEvidence{kNow, 2, true}));
  EXPECT_TRUE(seen.isPlaceholder);
  EXPECT_EQ(seen.isScreenCapture, true);
  EXPECT_EQ(seen.decodesCompletely, false);
}

TEST_F(FolderScanTest, SecondLookAtAFileWithoutDataElsewhereMakesItNoPlaceholder) {
  havePending(make("a.png"), {kNow, 1, false});
  services->anyFile.isDataless = true;
  const auto seen = onlyObservation();
  EXPECT_EQ(seen.evidence, (ArrivalEvidence{kNow, 2, true}));
  EXPECT_FALSE(seen.isPlaceholder);
  EXPECT_EQ(seen.isScreenCapture, std::nullopt);
}

TEST_F(FolderScanTest, PlaceholdersTagIsNotReadWithOtherImagesIncluded) {
  havePending(make("a.png"), {kNow, 1, false});
  services->anyFile.isDataless = true;
  services->isSynced = true;
  snapshot.includesNonCaptureImages = true;
  const auto seen = onlyObservation();
  EXPECT_TRUE(seen.isPlaceholder);
  EXPECT_EQ(seen.isScreenCapture, std::nullopt);
}

TEST_F(FolderScanTest, DataThatCameStartsTheCountAgainButKeepsTheOrigin) {
  havePending(make("a.png"), {kNow, 3, true});
  EXPECT_EQ(onlyObservation().evidence, (ArrivalEvidence{kNow, 0, true}));
}

// --- Captured here, or from elsewhere ---

TEST_F(FolderScanTest, CreationUpTo120SecondsFromTheFirstSightingIsLocal) {
  const std::vector<std::pair<double, bool>> rows{{0, false},   {-119, false}, {-120, false}, {-120.001, true},
                                                  {-121, true}, {120, false},  {121, true},   {-86400, true}};
  havePending(make("a.png"));
  for (const auto& [offset, isFromElsewhere] : rows) {
    services->anyFile.dates.created = kNow + offset;
    EXPECT_EQ(onlyObservation().evidence->isFromElsewhere, isFromElsewhere) << offset;
  }
}

TEST_F(FolderScanTest, AFileWrittenMoreThan120SecondsBeforeItsFirstSightingIsACopyThatKeptItsDate) {
  for (const auto& [offset, isFromElsewhere] : std::vector<std::pair<double, bool>>{
           {0, false}, {-120, false}, {-121, true}, {-7 * 86400, true}, {500, false}}) {
    for (const auto& created : {std::optional(kNow), std::optional<Date>()}) {
      snapshot.pending.clear();
      havePending(make("a.png", kNow + offset));
      services->anyFile.dates.created = created;
      EXPECT_EQ(onlyObservation().evidence->isFromElsewhere, isFromElsewhere) << offset;
    }
  }
}

TEST_F(FolderScanTest, AFileThatSaysItWasCapturedMoreThanADayAgoIsACopy) {
  havePending(make("a.png"));
  services->anyFile.dates.created = kNow;
  for (const auto& [offset, isFromElsewhere] :
       std::vector<std::pair<double, bool>>{{0, false}, {-86400, false}, {-86401, true}, {86400 * 3, false}}) {
    services->anyFile.dates.captured = kNow + offset;
    EXPECT_EQ(onlyObservation().evidence->isFromElsewhere, isFromElsewhere) << offset;
  }
}

TEST_F(FolderScanTest, FileWithoutCreationDateKeepsItsEvidence) {
  havePending(make("a.png"));
  services->isSynced = true;
  services->anyFile.dates = {.addedToDirectory = kNow + 1000};
  EXPECT_EQ(onlyObservation().evidence, (ArrivalEvidence{kNow, 0, false}));
}

TEST_F(FolderScanTest, InASyncedFolderAFileAddedMoreThanTwoSecondsAfterItsCreationCameFromElsewhere) {
  havePending(make("a.png"));
  services->isSynced = true;
  for (const auto& [gap, isFromElsewhere] :
       std::vector<std::pair<double, bool>>{{0, false}, {2, false}, {2.001, true}, {-100, false}}) {
    services->anyFile.dates = {.created = kNow, .addedToDirectory = kNow + gap};
    EXPECT_EQ(onlyObservation().evidence->isFromElsewhere, isFromElsewhere) << gap;
  }
}

TEST_F(FolderScanTest, ElsewhereTheDateOfAddingDoesNotCount) {
  havePending(make("a.png"));
  services->anyFile.dates = {.created = kNow, .addedToDirectory = kNow + 1000};
  EXPECT_FALSE(onlyObservation().evidence->isFromElsewhere);
}

TEST_F(FolderScanTest, OriginElsewhereIsNeverUnset) {
  havePending(make("a.png"), {kNow, 0, true});
  EXPECT_TRUE(onlyObservation().evidence->isFromElsewhere);
}

TEST_F(FolderScanTest, LimitsAreThoseOfTheSnapshot) {
  havePending(make("a.png"));
  services->isSynced = true;
  snapshot.localArrivalTolerance = 10;
  snapshot.recentCaptureInterval = 5;
  services->anyFile.dates = {.created = kNow, .addedToDirectory = kNow + 9};
  EXPECT_FALSE(onlyObservation().evidence->isFromElsewhere);
  services->anyFile.dates = {.created = kNow + -6};
  EXPECT_TRUE(onlyObservation().evidence->isFromElsewhere);
}

TEST_F(FolderScanTest, WhetherTheFolderIsSyncedIsAskedAtMostOnce) {
  for (int i = 0; i < 20; ++i) havePending(make(std::to_string(i) + ".png"));
  services->anyFile.dates.addedToDirectory = kNow;
  performScan(snapshot);
  EXPECT_EQ(services->syncedCalls, 1);
}

TEST_F(FolderScanTest, WhetherTheFolderIsSyncedIsNotAskedInVain) {
  havePending(make("a.png"));
  performScan(snapshot);
  EXPECT_EQ(services->syncedCalls, 0);
}

// --- Many at once ---

TEST_F(FolderScanTest, AMarkedFileThatIsNewAloneIsTheNewcomer) {
  snapshot.seeksNewcomer = true;
  const FileURL known = make("known.png");
  know({known});
  const FileURL seen = make("seen.png");
  havePending(seen);
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
  const FileURL url = make("new.png");
  EXPECT_EQ(performScan(snapshot).newcomer, url);
  EXPECT_TRUE(services->decodeCalls.find("new.png") == services->decodeCalls.end());
  snapshot.full = false;
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
}

TEST_F(FolderScanTest, OfSeveralNewFilesNoneIsTheNewcomer) {
  snapshot.seeksNewcomer = true;
  make("a.png");
  make("b.png");
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
}

TEST_F(FolderScanTest, AFileOfABaselineOrWithoutMarkOrDataIsNoNewcomer) {
  snapshot.seeksNewcomer = true;
  make("a.png");
  services->anyFile.isTagged = false;
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
  services->anyFile.isTagged = true;
  EXPECT_NE(performScan(snapshot).newcomer, std::nullopt);
  services->anyFile.isDataless = true;
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
  services->anyFile.isDataless = false;
  snapshot.baselineStart = kNow + -100;
  EXPECT_EQ(performScan(snapshot).newcomer, std::nullopt);
}

TEST_F(FolderScanTest, OfManyTheOldestHaveTheirTurnAndTheOthersInTheNextScan) {
  const size_t count = kLeastPortion + 10;
  for (size_t i = 0; i < count; ++i) havePending(make(std::to_string(i) + ".png", kNow + static_cast<double>(i)));
  for (const bool isFull : {true, false}) {
    services->decodeCalls.clear();
    snapshot.full = isFull;
    const ScanResult first = performScan(snapshot);
    EXPECT_TRUE(first.isAnyPutOff);
    ASSERT_EQ(first.observations->size(), kLeastPortion) << "of the others nothing is told";
    for (size_t i = 0; i < kLeastPortion; ++i) {
      const Observation& seen = (*first.observations)[i];
      EXPECT_EQ(seen.url.lastPathComponent(), std::to_string(i) + ".png");
      EXPECT_EQ(seen.decodesCompletely, true) << i;
      EXPECT_TRUE(seen.evidence.has_value()) << i;
    }
    EXPECT_EQ(services->decodeCalls.size(), kLeastPortion);
  }
}

TEST_F(FolderScanTest, AnEighthOfManyHasItsTurn) {
  const size_t portion = kLeastPortion + 5;
  for (size_t i = 0; i < 8 * portion; ++i) havePending(make(std::to_string(i) + ".png"));
  for (const bool isFull : {true, false}) {
    snapshot.full = isFull;
    EXPECT_EQ(performScan(snapshot).observations->size(), portion);
  }
}

TEST_F(FolderScanTest, NobodyIsPutOffWhenAllHaveTheirTurn) {
  for (size_t i = 0; i < kLeastPortion; ++i) havePending(make(std::to_string(i) + ".png"));
  for (const bool isFull : {true, false}) {
    snapshot.full = isFull;
    const ScanResult result = performScan(snapshot);
    EXPECT_FALSE(result.isAnyPutOff);
    EXPECT_EQ(result.observations->size(), kLeastPortion);
  }
}

TEST_F(FolderScanTest, WhatChangesWhileItWaitsIsSeenAtItsTurn) {
  std::vector<FileURL> first;
  for (size_t i = 0; i < kLeastPortion; ++i) {
    first.push_back(make(std::to_string(i) + ".png"));
    havePending(first.back());
  }
  const FileURL last = make("last.png", kNow + 1.0);
  havePending(last);
  writeFile(last, "more bytes than it had");
  for (const bool isFull : {true, false}) {
    snapshot.full = isFull;
    EXPECT_EQ(performScan(snapshot).observations->size(), kLeastPortion);
  }
  know(first);
  for (const FileURL& url : first) snapshot.pending.erase(url);
  for (const bool isFull : {true, false}) {
    snapshot.full = isFull;
    const Observation seen = onlyObservation();
    EXPECT_EQ(seen.fingerprint, readFingerprint(last));
    EXPECT_EQ(seen.decodesCompletely, std::nullopt) << "it has not held still";
  }
}

TEST_F(FolderScanTest, WhatLeavesWhileItWaitsIsForgotten) {
  std::vector<FileURL> urls;
  for (size_t i = 0; i < kLeastPortion + 1; ++i) {
    urls.push_back(make(std::to_string(i) + ".png", kNow + static_cast<double>(i)));
    havePending(urls.back());
  }
  ASSERT_EQ(::unlink(urls.back().c_str()), 0);
  const ScanResult result = performScan(snapshot);
  EXPECT_FALSE(result.isAnyPutOff);
  EXPECT_EQ(result.absentPending, std::vector{urls.back()});
}

TEST_F(FolderScanTest, WhatHasHadItsTurnKeepsNobodyFromTheirs) {
  for (size_t i = 0; i < 2 * kLeastPortion; ++i) {
    const FileURL url = make(std::to_string(i) + ".png", kNow + static_cast<double>(i));
    havePending(url);
    snapshot.pending[url].attempts = 2;
  }
  const FileURL newest = make("newest.png", kNow + 1000.0);
  havePending(newest);
  for (const bool isFull : {true, false}) {
    snapshot.full = isFull;
    const ScanResult result = performScan(snapshot);
    EXPECT_FALSE(result.isAnyPutOff);
    EXPECT_EQ(result.observations->size(), 2 * kLeastPortion + 1);
    EXPECT_EQ(result.observations->back().decodesCompletely, true);
  }
}

}  // namespace
}  // namespace quillmere
