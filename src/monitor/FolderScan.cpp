#include "monitor/FolderScan.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

#include "foundation/FileStatus.h"
#include "records/PictureFormat.h"

namespace quillmere {
namespace {

std::optional<Fingerprint> fingerprintOf(const std::optional<FileStatus>& status) {
  if (!status || !status->isRegular()) return std::nullopt;
  return Fingerprint{status->size, status->modified};
}

struct Entry {
  FileURL url;
  std::optional<Fingerprint> fingerprint;
  bool waitsForTurn = false;  ///< it was not looked at, and the fingerprint is that of the last look
};

/// For its first examination. What has had its turn is asked again without one, or many that fail would keep the others
/// from theirs.
bool waitsForTurn(const Snapshot::PendingLook& pending) {
  return pending.attempts == 1 && !pending.complete;
}

struct Listing {
  std::vector<Entry> entries;  // names that are not known
  std::vector<bool> found;     // which of the known ones are still there, by their places
};

/// None when the folder cannot be listed.
std::optional<Listing> listUnknown(const Snapshot& snapshot, const URLSet& known) {
  const FileURL& directory = snapshot.directory;
  Listing listing;
  listing.found.resize(known.size());
  size_t guess = 0;
  std::string path = directory.path() + "/";
  const size_t prefix = path.size();
  const bool listed = listDirectory(directory, [&](int folder, const char* name, EntryKind kind) {
    if (kind == EntryKind::notRegular || !isWatchedName(name)) return;
    path.resize(prefix);
    path += name;
    if (const auto place = known.indexOf(path, guess)) {
      listing.found[*place] = true;
      guess = *place + 1;
      return;
    }
    const auto pending = snapshot.pending.find(std::string_view(path));
    if (pending != snapshot.pending.end() && waitsForTurn(pending->second)) {
      listing.entries.push_back({pending->first, pending->second.fingerprint, true});
      return;
    }
    const auto status = fileStatus(folder, name);
    // Listed as a file but closed to a look, as in a folder that may only be listed: there, and nothing known of it.
    const bool isUnreadable = !status && kind == EntryKind::regular && errno != ENOENT;
    if (!isUnreadable && !(status && status->isRegular())) return;
    listing.entries.push_back({FileURL::fromPath(path), fingerprintOf(status)});
  });
  if (!listed) return std::nullopt;
  return listing;
}

/// The tests of files that have held still.
class Examination {
 public:
  explicit Examination(const Snapshot& snapshot) : snapshot_(snapshot) {}

  void begin(Observation& seen, size_t place) {
    if (!seen.fingerprint) return;
    const auto ignored = snapshot_.ignored.find(seen.url);
    if (ignored != snapshot_.ignored.end() && ignored->second == *seen.fingerprint) return;
    const auto pending = snapshot_.pending.find(seen.url);
    if (pending == snapshot_.pending.end() || pending->second.fingerprint != *seen.fingerprint) return;
    const auto known = snapshot_.evidence.find(seen.url);
    if (known == snapshot_.evidence.end()) return;

    seen.evidence = known->second;
    if (pending->second.complete) {
      whole_.push_back(place);
    } else if (isWorthDecoding(seen)) {
      undecoded_.push_back(place);
    }
  }

  /// All that are to be decoded together, which takes less time than one by one.
  void end(std::vector<Observation>& observations) {
    std::vector<FileURL> urls;
    urls.reserve(undecoded_.size());
    for (const size_t place : undecoded_) urls.push_back(observations[place].url);
    const std::vector<bool> decoded = urls.empty() ? std::vector<bool>() : snapshot_.services.decodeCompletely(urls);
    for (size_t i = 0; i < undecoded_.size(); ++i) {
      observations[undecoded_[i]].decodesCompletely = decoded[i];
      if (decoded[i]) whole_.push_back(undecoded_[i]);
    }
    for (const size_t place : whole_) classify(observations[place]);
  }

 private:
  /// Whether the file is here, and may be a capture.
  bool isWorthDecoding(Observation& seen) {
    if (seen.fingerprint->size < 1) return false;
    if (!snapshot_.services.isDataless(seen.url)) {
      seen.evidence->datalessLooks = 0;
      // What is no capture is never decoded, whatever it would take.
      readTag(seen);
      return seen.isScreenCapture != false;
    }
    seen.evidence->datalessLooks += 1;
    seen.decodesCompletely = false;
    if (seen.evidence->datalessLooks == 1) return false;
    seen.evidence->isFromElsewhere = true;
    if (isSynced()) {
      seen.isPlaceholder = true;
      readTag(seen);
    }
    return false;
  }

  void classify(Observation& seen) {
    ArrivalEvidence& evidence = *seen.evidence;
    if (!seen.isScreenCapture) readTag(seen);
    const FileDates dates = snapshot_.services.fileDates(seen.url);
    // A copy gets a birth time of its own, but may keep the date of writing, or say itself how old it is.
    if (evidence.firstSeen - seen.fingerprint->modified > snapshot_.recentCaptureInterval) {
      evidence.isFromElsewhere = true;
    }
    if (dates.captured && evidence.firstSeen - *dates.captured > snapshot_.oldCaptureInterval) {
      evidence.isFromElsewhere = true;
    }
    if (!dates.created) return;
    // One-sided: a capture is never added to its folder before it is made.
    if (dates.addedToDirectory && isSynced() &&
        *dates.addedToDirectory - *dates.created > snapshot_.localArrivalTolerance) {
      evidence.isFromElsewhere = true;
    }
    if (std::abs(evidence.firstSeen - *dates.created) > snapshot_.recentCaptureInterval) {
      evidence.isFromElsewhere = true;
    }
  }

  void readTag(Observation& seen) const {
    if (!snapshot_.includesNonCaptureImages) {
      seen.isScreenCapture = snapshot_.services.hasScreenCaptureTag(seen.url);
    }
  }

  /// Asked at most once a scan: it can be slow on a network share.
  bool isSynced() {
    if (!wasAsked_) isSynced_ = snapshot_.services.isSynced(snapshot_.directory);
    wasAsked_ = true;
    return isSynced_;
  }

  const Snapshot& snapshot_;
  std::vector<size_t> undecoded_;  ///< places of observations
  std::vector<size_t> whole_;
  bool wasAsked_ = false;
  bool isSynced_ = false;
};

/// Entries come oldest first: neither a directory nor the table of pending files has an order, and what comes in one
/// burst is met in the order it was taken, so that the popups come oldest first.
bool isOlder(const Entry& a, const Entry& b) {
  const auto key = [](const Entry& entry) {
    return std::pair(entry.fingerprint ? entry.fingerprint->modified.seconds : 0, std::string_view(entry.url.path()));
  };
  return key(a) < key(b);
}

/// Looks at the oldest `portion` of those that wait for their turn, and leaves out the others. Answers whether there
/// are any.
bool takeTurns(std::vector<Entry>& entries, size_t portion) {
  const auto waiting =
      std::partition(entries.begin(), entries.end(), [](const Entry& entry) { return !entry.waitsForTurn; });
  const bool isAnyPutOff = static_cast<size_t>(entries.end() - waiting) > portion;
  if (isAnyPutOff) {
    const auto last = waiting + static_cast<std::ptrdiff_t>(portion);
    std::nth_element(waiting, last, entries.end(), &isOlder);
    entries.erase(last, entries.end());
  }
  for (auto entry = waiting; entry != entries.end(); ++entry) entry->fingerprint = readFingerprint(entry->url);
  return isAnyPutOff;
}

void observe(const Snapshot& snapshot, std::vector<Entry> entries, const URLSet& skipped, ScanResult& result) {
  // A part of all grows with their number, so that looking at the rest once more costs less than decoding it.
  result.isAnyPutOff = takeTurns(entries, std::max(kLeastPortion, entries.size() / 8));
  std::sort(entries.begin(), entries.end(), &isOlder);
  Examination examination(snapshot);
  std::vector<Observation>& observations = result.observations.emplace();
  for (Entry& entry : entries) {
    if (skipped.contains(entry.url)) continue;
    Observation& seen = observations.emplace_back();
    seen.url = std::move(entry.url);
    seen.fingerprint = entry.fingerprint;
    examination.begin(seen, observations.size() - 1);
  }
  examination.end(observations);
}

std::vector<Entry> pendingEntries(const Snapshot& snapshot) {
  std::vector<Entry> entries;
  entries.reserve(snapshot.pending.size());
  for (const auto& [url, pending] : snapshot.pending) {
    const bool waits = waitsForTurn(pending);
    entries.push_back({url, waits ? pending.fingerprint : readFingerprint(url), waits});
  }
  return entries;
}

template <typename Table>
std::vector<FileURL> absent(const Table& table, const URLSet& current) {
  std::vector<FileURL> result;
  for (const auto& [url, value] : table) {
    if (!current.contains(url)) result.push_back(url);
  }
  return result;
}

/// Of many nobody knows which comes first.
std::optional<FileURL> loneNewcomer(const Snapshot& snapshot, const std::vector<Observation>& observations) {
  const FileURL* newcomer = nullptr;
  for (const Observation& seen : observations) {
    const bool isNew = seen.fingerprint && !snapshot.pending.contains(seen.url) && !snapshot.ignored.contains(seen.url);
    if (isNew && newcomer) return std::nullopt;
    if (isNew) newcomer = &seen.url;
  }
  const bool isCapture =
      newcomer && !snapshot.services.isDataless(*newcomer) && snapshot.services.hasScreenCaptureTag(*newcomer);
  return isCapture ? std::optional(*newcomer) : std::nullopt;
}

}  // namespace

bool isWatchedName(std::string_view name) {
  if (name.empty() || name.front() == '.') return false;
  const auto dot = name.rfind('.');
  return dot != std::string_view::npos && formatOfExtension(name.substr(dot + 1)).has_value();
}

std::optional<Fingerprint> readFingerprint(const FileURL& url) {
  return fingerprintOf(fileStatus(url));
}

ScanResult performScan(const Snapshot& snapshot) {
  ScanResult result;
  if (!snapshot.full) {
    observe(snapshot, pendingEntries(snapshot), *snapshot.known, result);
    return result;
  }

  const bool isBaseline = snapshot.baselineStart.has_value();
  const URLSet nothing;
  const URLSet& known = isBaseline ? nothing : *snapshot.known;
  // A mount point whose file system is away may still be a folder, an empty one: listing it would lose every record.
  std::optional<Listing> listing;
  const bool isMounted = snapshot.services.isVolumeMounted(snapshot.directory);
  if (isMounted) listing = listUnknown(snapshot, known);
  if (!listing) {
    result.unavailable = isMounted ? WatcherStatus::notFound : WatcherStatus::volumeNotConnected;
    return result;
  }

  URLSet current;
  for (const Entry& entry : listing->entries) {
    current.insert(entry.url);
    if (isBaseline && (!entry.fingerprint || entry.fingerprint->modified < *snapshot.baselineStart)) {
      result.baseline.insert(entry.url);
    }
  }
  for (size_t i = 0; i < known.size(); ++i) {
    if (!listing->found[i]) result.removed.push_back(known[i]);
  }
  std::sort(result.removed.begin(), result.removed.end());
  result.absentPending = absent(snapshot.pending, current);
  result.absentIgnored = absent(snapshot.ignored, current);
  result.absentEvidence = absent(snapshot.evidence, current);
  observe(snapshot, std::move(listing->entries), result.baseline, result);
  if (snapshot.seeksNewcomer && !isBaseline) result.newcomer = loneNewcomer(snapshot, *result.observations);
  return result;
}

}  // namespace quillmere
