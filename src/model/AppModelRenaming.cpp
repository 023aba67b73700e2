#include <QtCore/QStringList>
#include <algorithm>

#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

Task<AppModel::Renamed> AppModel::renameItem(Weak<AppModel> self, UUID id, QString name) {
  const auto stem = sanitizedFileStem(name);
  const std::vector<UUID> only(1, id);
  const auto claiming = claimFiles(self, only, {}, stem);
  const auto hold = co_await claiming;
  const ScreenshotItem* item = self ? self->items_.find(id) : nullptr;
  if (!item) co_return Renamed{RenameOutcome::unknown, {}, false};
  Renamed result{RenameOutcome::unchanged, item->url, false};
  if (!stem || stem->toStdString() == item->url.stem()) co_return result;
  if (self->unavailableItemIDs->contains(id)) {
    result.outcome = RenameOutcome::unavailable;
    co_return result;
  }
  RenameJob job{item->url, *stem, item->fileIdentity, item->fileBookmark, std::nullopt, self->watchFolderPaths_};
  RenameReport report;
  bool isAnother = false;
  constexpr int kMostAttempts = 2;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const std::function<RenameReport()> work = [job, services = FileServices::of(self->dependencies_)] {
      return renameFile(job, services);
    };
    const auto working = self->fileWorker_.run(work);
    report = co_await working;
    if (!self) co_return result;
    if (report.outcome != RenameReport::Outcome::another) break;
    // Another file may have taken the name. If the record's own is nowhere else and this one no other record's, an
    // editor has saved it anew: then what stands here is renamed, but never thrown away for the old one.
    const auto index = self->items_.indexOf(id);
    if (!index) break;
    if (report.moved) {
      self->adoptMovedPlace(*index, *report.moved);
      job.url = report.moved->url;
    } else if (self->isOfARecord(*report.identity)) {
      break;
    } else {
      isAnother = true;
      job.accepted = report.identity;
    }
  }
  const auto index = self->items_.indexOf(id);
  if (report.outcome == RenameReport::Outcome::renamed) {
    self->dependencies_.monitor->noteUnknown(job.url);
    self->dependencies_.monitor->noteKnown(report.url);
    if (index) {
      self->adoptName(*index, report, isAnother);
    } else {
      // Forgotten meanwhile: nobody is asked about it under its new name.
      std::erase_if(self->laterArrivals_, [&](const auto& arrival) { return arrival.first == report.url; });
    }
    result.outcome = RenameOutcome::renamed;
  } else if (report.outcome != RenameReport::Outcome::unchanged) {
    result.outcome = RenameOutcome::failed;
  }
  result.hasMoved = index && self->items_[*index].url != result.before;
  co_return result;
}

/// The folder may have got another name while the file got its own.
void AppModel::adoptName(size_t index, const RenameReport& report, bool isAnother) {
  const FileURL url = items_[index].url.parent().appending(report.url.lastPathComponent());
  updateItem(index, [&](ScreenshotItem& record) {
    record.url = url;
    if (isAnother) return;
    if (report.identity) record.fileIdentity = report.identity;
    if (report.bookmark) record.fileBookmark = report.bookmark;
  });
  refreshItemAccess(index, std::nullopt);
}

void AppModel::adoptMovedPlace(size_t index, const ResolvedBookmark& place) {
  if (place.refreshed) {
    updateItem(index, [&](ScreenshotItem& record) { record.fileBookmark = place.refreshed; });
  }
  updateLocation(index, place.url, std::nullopt);
}

bool AppModel::isOfARecord(const FileIdentity& identity) {
  const auto ids = recordIndex().withFileNumber(identity.file);
  return std::any_of(ids.begin(), ids.end(), [&](const UUID& id) {
    const ScreenshotItem* item = items_.find(id);
    return item && item->fileIdentity && item->fileIdentity->isSameInode(identity);
  });
}

Task<bool> AppModel::rename(UUID id, QString name, ErrorScope scope) {
  return runRename(lifetime_.weak(this), id, std::move(name), scope);
}

Task<bool> AppModel::runRename(Weak<AppModel> self, UUID id, QString name, ErrorScope scope) {
  const auto renaming = renameItem(self, id, std::move(name));
  const Renamed renamed = co_await renaming;
  if (!self) co_return false;
  if (renamed.hasMoved) self->saveNow();
  const QString title = localized("Couldn’t Rename Screenshot");
  const QString before = renamed.before.displayName();
  switch (renamed.outcome) {
    case RenameOutcome::renamed:
    case RenameOutcome::unchanged:
      co_return true;
    case RenameOutcome::unknown:
      co_return false;
    case RenameOutcome::unavailable:
      self->show(self->scopeNow(scope, id), title,
                 localized("“%@” is on a disk or in a folder that isn’t available. Connect the disk or choose the "
                           "folder again, then try again.",
                           {before}));
      co_return false;
    case RenameOutcome::failed:
      self->show(self->scopeNow(scope, id), title,
                 localized("“%@” couldn’t be renamed, so it keeps its current name. Check that you can change files "
                           "in its folder, then try again.",
                           {before}));
      co_return false;
  }
  co_return false;
}

/// The popup goes on to the next screenshot after it, and takes with it what it says: the Inbox says it, too.
Task<> AppModel::renameBeforeDecision(Weak<AppModel> self, UUID id, QString name) {
  const auto renaming = runRename(self, id, std::move(name), ErrorScope::popup);
  const bool isRenamed = co_await renaming;
  if (!isRenamed && self && self->prompts_.front() == id) self->inboxError.set(*self->promptError);
}

std::optional<QString> AppModel::suggestedStem(const UUID& id) const {
  const ScreenshotItem* item = items_.find(id);
  if (!item || !item->suggestedName || !item->imageDescription) return std::nullopt;
  return sanitizedFileStem(QString::fromUtf8(*item->suggestedName));
}

Task<> AppModel::applySuggestedNames(std::vector<UUID> ids, ErrorScope scope) {
  return runSuggestedNames(lifetime_.weak(this), std::move(ids), scope);
}

Task<> AppModel::runSuggestedNames(Weak<AppModel> self, std::vector<UUID> ids, ErrorScope scope) {
  if (ids.size() == 1) {
    const auto name = self->suggestedStem(ids.front());
    if (!name) co_return;
    const auto renaming = runRename(self, ids.front(), *name, scope);
    co_await renaming;
    co_return;
  }
  bool hasChanged = false;
  int unavailable = 0;
  int failed = 0;
  for (const UUID& id : ids) {
    const auto name = self->suggestedStem(id);
    if (!name) continue;
    const auto renaming = renameItem(self, id, *name);
    const Renamed renamed = co_await renaming;
    if (!self) co_return;
    hasChanged = hasChanged || renamed.hasMoved;
    if (renamed.outcome == RenameOutcome::unavailable) ++unavailable;
    if (renamed.outcome == RenameOutcome::failed) ++failed;
  }
  if (hasChanged) self->saveNow();
  QStringList sentences;
  if (failed > 0) {
    sentences << localized("%lld screenshots couldn’t be renamed. Check that you can change files in their folder.",
                           {failed});
  }
  if (unavailable > 0) {
    sentences << localized("%lld screenshots are on a disk or in a folder that isn’t available.", {unavailable});
  }
  if (sentences.isEmpty()) co_return;
  sentences << localized("They keep the names they have.");
  self->show(scope, localized("Couldn’t Rename Every Screenshot"), sentences.join(QLatin1Char(' ')));
}

}  // namespace quillmere
