#pragma once

#include <functional>
#include <optional>
#include <unordered_set>
#include <variant>
#include <vector>

#include "model/AppModelDependencies.h"
#include "model/RecordIndex.h"

namespace quillmere {

/// One record, as reconciliation sees it.
struct ReconcileInput {
  UUID id;
  FileURL url;
  std::optional<QByteArray> bookmark;
  std::optional<FileIdentity> identity;
  bool hasMovedAway = false;  ///< seen to be moved out of the watched folder
};

/// The world as it is when a run starts; used off the main thread.
struct ReconcileEnvironment {
  std::optional<FileURL> watchFolder;
  std::optional<WatchFolderPaths> watchFolderPaths;
  bool hasFolderAccess = false;
  std::unordered_set<std::string> trackedPaths;
  std::unordered_set<std::string> sharedPaths;  ///< that several records have
  SecurityScopeAccess* scope = nullptr;
  std::function<bool(const FileURL&)> isInTrash;
  std::function<std::optional<FileIdentity>(const FileURL&)> fileIdentity;
  std::function<bool(const FileURL&)> isFolderReachable;
  std::function<bool(const FileURL&)> isVolumeMounted;
  std::function<bool(const FileURL&)> isDataless;
  std::function<bool(const FileURL&)> isUbiquitous;
};

/// Where the file is.
struct FilePresent {
  FileURL url;
  std::optional<FileURL> scopedURL;
  std::optional<QByteArray> refreshedBookmark;  ///< of a stale or a missing one, and of a file found by its identity
  std::optional<FileIdentity> identity;
  bool foundByIdentity = false;
  bool isEvicted = false;
  bool isICloud = false;
  bool operator==(const FilePresent&) const = default;
};
/// The file is truly no more.
struct FileGone {
  bool operator==(const FileGone&) const = default;
};
/// It cannot be told.
struct FileUnavailable {
  bool hasMovedAway = false;
  bool operator==(const FileUnavailable&) const = default;
};
using ReconcileOutcome = std::variant<FilePresent, FileGone, FileUnavailable>;

/// What one run works on and what came of it.
struct ReconcileRun {
  std::vector<ReconcileInput> inputs;
  ReconcileEnvironment environment;
  UUIDMap<ReconcileOutcome> outcomes;
};

/// Compares records with the file system. Changes nothing; lists the watched folder at most once, and only when a
/// record needs it.
UUIDMap<ReconcileOutcome> resolveOutcomes(const std::vector<ReconcileInput>& inputs,
                                          const ReconcileEnvironment& environment);

/// A bookmark resolved, and made anew where it was stale.
struct ResolvedBookmark {
  FileURL url;
  std::optional<QByteArray> refreshed;
  std::optional<FileURL> previous = std::nullopt;  ///< where the bookmark said, when the file is in another place now
};
std::optional<ResolvedBookmark> resolveBookmark(SecurityScopeAccess& scope, const std::optional<QByteArray>& bookmark);

}  // namespace quillmere
