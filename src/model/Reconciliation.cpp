#include "model/Reconciliation.h"

#include <atomic>
#include <unordered_map>

#include "foundation/FileStatus.h"
#include "model/ReconciliationWork.h"

namespace quillmere {
namespace {

/// One run over many records.
class Resolver {
 public:
  explicit Resolver(const ReconcileEnvironment& environment) : environment_(environment) {}

  ReconcileOutcome resolve(const ReconcileInput& input) {
    ReconcileOutcome outcome = find(input);
    auto* present = std::get_if<FilePresent>(&outcome);
    // Here rather than where outcomes are applied: it looks at the disk.
    if (present && !present->refreshedBookmark && (!input.bookmark || present->foundByIdentity)) {
      present->refreshedBookmark = environment_.scope->makeBookmark(present->url);
    }
    return outcome;
  }

  /// The files that only seem to have gone, since their disk has left while they were looked for.
  std::vector<UUID> doubtful() {
    if (goneFromFolder_.empty() || environment_.isFolderReachable(*environment_.watchFolder)) return {};
    return std::move(goneFromFolder_);
  }

 private:
  ReconcileOutcome find(const ReconcileInput& input) {
    if (isInTrash(input.url)) return FileGone{};
    // Another disk in the place of the folder's has files of its own, perhaps under the same names.
    if (isInWatchFolder(input.url) && !isDiskThere()) return FileUnavailable{};
    const auto bookmarked = resolveBookmark(*environment_.scope, input.bookmark);
    if (bookmarked && isInTrash(bookmarked->url)) return FileGone{};
    const bool isTaken = isAnothers(input);
    if (bookmarked && !(isTaken && bookmarked->url == input.url)) {
      if (auto found = lookAtScoped(*bookmarked)) return *found;
    }
    if (fileExists(input.url) && !isTaken) {
      auto found = look(input.url);
      if (bookmarked) found.refreshedBookmark = bookmarked->refreshed;
      return found;
    }
    // A sync client may have put a placeholder of another name in its stead.
    if (environment_.isDataless(input.url)) return lookAtPlaceholder(input.url);
    if (auto found = searchByIdentity(input)) return *found;
    // A look that was refused says nothing.
    const bool hasLeft = isTaken || isAbsent(input.url);
    if (hasLeft && isInWatchFolder(input.url) && canSeeFolder()) {
      // Moved to where it was not found: it was wanted.
      if (input.hasMovedAway) return FileUnavailable{true};
      goneFromFolder_.push_back(input.id);
      return FileGone{};
    }
    return FileUnavailable{};
  }

  /// Asked once for neighbours: it follows every link on the way.
  bool isInTrash(const FileURL& url) {
    FileURL folder = url.parent();
    if (!trashAnswer_ || trashAnswer_->first != folder) {
      trashAnswer_.emplace(std::move(folder), environment_.isInTrash(url));
    }
    return trashAnswer_->second;
  }

  /// Several records have the place, and the file there is not this one's.
  bool isAnothers(const ReconcileInput& input) const {
    if (!input.identity || !input.identity->isComplete() || environment_.sharedPaths.empty()) return false;
    if (!environment_.sharedPaths.contains(pathKey(input.url, environment_.watchFolderPaths))) return false;
    const auto identity = environment_.fileIdentity(input.url);
    return identity && !identity->isSameFile(*input.identity);
  }

  FilePresent look(const FileURL& url) const {
    FilePresent found;
    found.url = url;
    found.identity = environment_.fileIdentity(url);
    found.isEvicted = environment_.isDataless(url);
    found.isICloud = found.isEvicted && environment_.isUbiquitous(url);
    return found;
  }

  FilePresent lookAtPlaceholder(const FileURL& url) const {
    FilePresent found;
    found.url = url;
    found.isEvicted = true;
    found.isICloud = environment_.isUbiquitous(url);
    return found;
  }

  std::optional<FilePresent> lookAtScoped(const ResolvedBookmark& bookmarked) const {
    const bool hasAccess = environment_.scope->start(bookmarked.url);
    std::optional<FilePresent> found;
    if (fileExists(bookmarked.url)) {
      found = look(bookmarked.url);
      found->scopedURL = bookmarked.url;
      found->refreshedBookmark = bookmarked.refreshed;
    }
    if (hasAccess) environment_.scope->stop(bookmarked.url);
    return found;
  }

  std::optional<FilePresent> searchByIdentity(const ReconcileInput& input) {
    if (!canSeeFolder() || !input.identity || !input.identity->isComplete()) return std::nullopt;
    const auto names = namesByFileNumber().equal_range(input.identity->file);
    for (auto name = names.first; name != names.second; ++name) {
      const FileURL candidate = FileURL::fromPath(environment_.watchFolderPaths->canonical).appending(name->second);
      if (environment_.trackedPaths.contains(candidate.path())) continue;  // another record's own file
      const auto identity = environment_.fileIdentity(candidate);
      if (!identity || !identity->isSameFile(*input.identity)) continue;
      FilePresent found = look(candidate);
      found.foundByIdentity = true;
      return found;
    }
    return std::nullopt;
  }

  const std::unordered_multimap<uint64_t, std::string>& namesByFileNumber() {
    if (names_) return *names_;
    names_.emplace();
    listDirectory(FileURL::fromPath(environment_.watchFolderPaths->canonical),
                  [&](int folder, const char* name, EntryKind) {
                    if (const auto status = fileStatus(folder, name)) names_->emplace(status->inode, name);
                  });
    return *names_;
  }

  bool isInWatchFolder(const FileURL& url) const {
    if (!environment_.watchFolderPaths) return false;
    const std::string parent = url.standardized().parent().path();
    return parent == environment_.watchFolderPaths->standardized || parent == environment_.watchFolderPaths->canonical;
  }

  /// Asked once a run. A folder whose disk has left shows nothing, which must not be taken for empty.
  bool canSeeFolder() {
    if (!canSeeFolder_) {
      canSeeFolder_ = environment_.hasFolderAccess && environment_.watchFolder && environment_.watchFolderPaths &&
                      environment_.isFolderReachable(*environment_.watchFolder);
    }
    return *canSeeFolder_;
  }

  bool isDiskThere() {
    if (!isDiskThere_) {
      isDiskThere_ = !environment_.watchFolder || environment_.isVolumeMounted(*environment_.watchFolder);
    }
    return *isDiskThere_;
  }

  const ReconcileEnvironment& environment_;
  std::optional<std::unordered_multimap<uint64_t, std::string>> names_;
  std::optional<bool> canSeeFolder_;
  std::optional<bool> isDiskThere_;
  std::optional<std::pair<FileURL, bool>> trashAnswer_;
  std::vector<UUID> goneFromFolder_;
};

}  // namespace

UUIDMap<ReconcileOutcome> resolveOutcomes(const std::vector<ReconcileInput>& inputs,
                                          const ReconcileEnvironment& environment) {
  return resolveOutcomes(inputs, environment, false);
}

UUIDMap<ReconcileOutcome> resolveOutcomes(const std::vector<ReconcileInput>& inputs,
                                          const ReconcileEnvironment& environment, const std::atomic<bool>& isStopped) {
  // The newest last: of many folders those of the newest are remembered.
  for (auto input = inputs.rbegin(); input != inputs.rend(); ++input) environment.scope->rememberPlace(input->url);
  Resolver resolver(environment);
  UUIDMap<ReconcileOutcome> outcomes;
  outcomes.reserve(inputs.size());
  for (const ReconcileInput& input : inputs) {
    if (isStopped) return outcomes;
    outcomes.insert_or_assign(input.id, resolver.resolve(input));
  }
  for (const UUID& id : resolver.doubtful()) outcomes.insert_or_assign(id, FileUnavailable{});
  return outcomes;
}

std::optional<ResolvedBookmark> resolveBookmark(SecurityScopeAccess& scope, const std::optional<QByteArray>& bookmark) {
  if (!bookmark) return std::nullopt;
  const auto resolution = scope.resolve(*bookmark);
  if (!resolution) return std::nullopt;
  ResolvedBookmark result{resolution->url, std::nullopt, resolution->previous};
  if (resolution->isStale) {
    const bool hasAccess = scope.start(resolution->url);
    result.refreshed = scope.makeBookmark(resolution->url);
    if (hasAccess) scope.stop(resolution->url);
  }
  return result;
}

}  // namespace quillmere
