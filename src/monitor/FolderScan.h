#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "foundation/Date.h"
#include "foundation/FileURL.h"
#include "monitor/ScreenshotMonitoring.h"
#include "monitor/URLSet.h"

namespace quillmere {

/// Whether a file has stopped changing is told by two looks that see the same.
struct Fingerprint {
  int64_t size = 0;  ///< bytes
  Date modified;
  bool operator==(const Fingerprint&) const = default;
};

/// What is known of how a file came to be here. It outlives changes of the file.
struct ArrivalEvidence {
  Date firstSeen;
  int datalessLooks = 0;         ///< consecutive looks at which the file's data was not on the disk
  bool isFromElsewhere = false;  ///< never unset
  bool operator==(const ArrivalEvidence&) const = default;
};

struct FileDates {
  std::optional<Date> created = std::nullopt;
  std::optional<Date> addedToDirectory = std::nullopt;  ///< where the file system keeps it
  std::optional<Date> captured = std::nullopt;          ///< at the latest, as the file itself or its name tells
};

template <typename T>
using URLMap = std::unordered_map<FileURL, T, FileURLHash, FileURLEqual>;

/// The questions that a scan asks of the world. Called on a background thread.
struct ScanServices {
  std::function<bool(const FileURL&)> isDataless;
  std::function<bool(const FileURL&)> isSynced;
  std::function<bool(const FileURL&)> isVolumeMounted;
  std::function<bool(const FileURL&)> hasScreenCaptureTag;
  std::function<std::vector<bool>(const std::vector<FileURL>&)> decodeCompletely;  ///< as many answers, in their order
  std::function<FileDates(const FileURL&)> fileDates;
};

/// A scan's whole input.
struct Snapshot {
  struct PendingLook {
    Fingerprint fingerprint;
    bool complete = false;  ///< it decoded at an earlier look and need not be decoded again
    int attempts = 1;       ///< looks at this unchanged fingerprint
    Date completeSince = {};
    Date firstSeen = {};                               ///< the file, whatever it was then
    std::optional<Date> unmarkedSince = std::nullopt;  ///< without a mark of a capture, and so never decoded
  };
  FileURL directory;
  bool full = false;                  ///< list the folder, instead of looking again at the pending files alone
  std::optional<Date> baselineStart;  ///< files older than this make up the baseline that this scan establishes
  std::shared_ptr<const URLSet> known = std::make_shared<URLSet>();
  URLMap<PendingLook> pending;
  URLMap<Fingerprint> ignored;
  URLMap<ArrivalEvidence> evidence;
  bool includesNonCaptureImages = false;
  bool seeksNewcomer = false;            ///< somebody wants to hear of it
  double localArrivalTolerance = 2.0;    ///< seconds
  double recentCaptureInterval = 120.0;  ///< seconds
  double oldCaptureInterval = 86400.0;   ///< seconds
  ScanServices services;
};

/// What one scan saw of one file.
struct Observation {
  FileURL url;
  std::optional<Fingerprint> fingerprint;  ///< none when it cannot be read
  std::optional<bool> decodesCompletely;   ///< none: not tested, as what has no mark of a capture
  std::optional<bool> isScreenCapture;     ///< none: not tested
  bool isPlaceholder = false;              ///< of a synced folder, and dataless
  std::optional<ArrivalEvidence> evidence;
};

/// A scan's whole output.
struct ScanResult {
  std::optional<std::vector<Observation>> observations;  ///< none: the folder could not be listed
  std::optional<WatcherStatus> unavailable;              ///< why not
  bool isAnyPutOff = false;                              ///< to the next scan, others being decoded in this one
  URLSet baseline;
  std::vector<FileURL> removed;     ///< known files that are gone, by path
  std::optional<FileURL> newcomer;  ///< the one file that is new in this look, if it is marked as a capture
  std::vector<FileURL> absentPending;
  std::vector<FileURL> absentIgnored;
  std::vector<FileURL> absentEvidence;
};

/// Only files are looked at whose extension stands for a picture format; hidden files never.
bool isWatchedName(std::string_view name);

/// Looks at one file. None for anything but a readable regular file.
std::optional<Fingerprint> readFingerprint(const FileURL& url);

/// Changes nothing but reads the file system. A name that is already known costs no look at its file. Of many files the
/// oldest are decoded, at least `kLeastPortion` of them, and the others put off, of which it tells nothing: what comes
/// first is told while the rest is still read.
inline constexpr size_t kLeastPortion = 64;
ScanResult performScan(const Snapshot& snapshot);

}  // namespace quillmere
