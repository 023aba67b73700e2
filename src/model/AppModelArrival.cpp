#include <algorithm>

#include "foundation/FileStatus.h"
#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::record(const FileURL& url, bool arrivedFromElsewhere) {
  if (const auto known = recordIndex().atPath(pathKeyOf(url))) {
    // A run that found the old file gone before this one came must not take the record away.
    if (reconcileTask_) arrivedDuringRun_.insert(*known);
    return;
  }
  const auto identity = dependencies_.fileIdentity(url);
  if (identity && followRename(url, *identity)) return;

  ScreenshotItem item;
  item.id = UUID::createUuid();
  item.url = url;
  item.createdAt = now();
  item.fileIdentity = identity;
  item.captureKind = dependencies_.captureKind(url);
  if (arrivedFromElsewhere) {
    if (identity && identity->creationDate) item.createdAt = *identity->creationDate;
    item.state = ScreenshotItem::State::permanent;
    item.arrivedFromElsewhere = true;
  } else {
    settings_.watchFolderHasReceivedScreenshot.change(true);
  }
  const UUID id = item.id;
  insertNewest(std::move(item));
  if (arrivedFromElsewhere) refreshCloudMembership(id, url);
  refreshBookmark(0, std::nullopt);
  refreshItemAccess(0, std::nullopt);
  saveNow();
  if (arrivedFromElsewhere) return;
  if (!isRecovering_) enqueuePrompt(id);
  if (*settings_.analyzeScreenshots) startAnalysis(id);
}

/// Whether the file is a known one under a new name; its record then follows it.
bool AppModel::followRename(const FileURL& url, const FileIdentity& identity) {
  if (!identity.isComplete()) return false;
  for (const UUID& id : recordIndex().withFileNumber(identity.file)) {
    const auto index = items_.indexOf(id);
    if (!index) continue;
    const ScreenshotItem& item = items_[*index];
    if (!item.fileIdentity || !item.fileIdentity->isSameFile(identity)) continue;
    // A second link to the file is no rename; another file that has taken the old name does not matter.
    const auto atOldPlace = dependencies_.fileIdentity(item.url);
    const bool isAnother = atOldPlace && atOldPlace->isComplete() && !atOldPlace->isSameFile(identity);
    if (fileExists(item.url) && !isAnother) continue;

    const auto oldBookmark = item.fileBookmark;
    updateItem(*index, [&](ScreenshotItem& record) { record.fileIdentity = identity; });
    setMember(unavailableItemIDs, id, false);
    refreshCloudMembership(id, url);
    updateLocation(*index, url, std::nullopt);
    refreshBookmark(*index, oldBookmark);
    refreshItemAccess(*index, std::nullopt);
    saveNow();
    return true;
  }
  return false;
}

const RecordIndex& AppModel::recordIndex() {
  if (!recordIndexCache_) recordIndexCache_.emplace(items_, watchFolderPaths_);
  return *recordIndexCache_;
}

// --- The queue ---

std::optional<UUID> AppModel::queueHead() const {
  return promptQueue->empty() ? std::nullopt : std::optional(promptQueue->front());
}

const ScreenshotItem* AppModel::headOfQueue() const {
  const auto head = queueHead();
  return head ? items_.find(*head) : nullptr;
}

void AppModel::enqueuePrompt(const UUID& id) {
  if (std::find(promptQueue->begin(), promptQueue->end(), id) != promptQueue->end()) return;
  auto queue = *promptQueue;
  queue.push_back(id);
  promptQueue.set(std::move(queue));
  // Later arrivals wait behind the screenshot that the person is looking at.
  if (promptQueue->size() == 1) showNextPrompt();
}

bool AppModel::enqueueAllPending() {
  std::vector<const ScreenshotItem*> pending;
  items_.forEach([&](const ScreenshotItem& item) {
    if (item.state == ScreenshotItem::State::pending && !unavailableItemIDs->contains(item.id)) {
      pending.push_back(&item);
    }
  });
  std::stable_sort(pending.begin(), pending.end(),
                   [](const auto* a, const auto* b) { return a->createdAt < b->createdAt; });
  std::vector<UUID> ids;
  for (const ScreenshotItem* item : pending) ids.push_back(item->id);
  const bool wasEmpty = promptQueue->empty();
  for (const UUID& id : ids) enqueuePrompt(id);
  return wasEmpty && !promptQueue->empty();
}

void AppModel::showNextPrompt() {
  auto queue = *promptQueue;
  std::erase_if(queue, [&](const UUID& id) {
    const ScreenshotItem* item = items_.find(id);
    return !item || item->state != ScreenshotItem::State::pending;
  });
  promptQueue.set(std::move(queue));
  const ScreenshotItem* head = headOfQueue();
  if (!head) {
    setVisiblePrompt(std::nullopt);
    dependencies_.promptPresenter->hide();
    return;
  }
  const UUID id = head->id;
  promptError.set(std::nullopt);
  setVisiblePrompt(id);
  dependencies_.promptPresenter->present(*head, *this);
  announcePrompt();
  beginCountdown(id);
}

void AppModel::setVisiblePrompt(const std::optional<UUID>& id) {
  if (id == lastVisiblePromptID_) return;
  lastVisiblePromptID_ = id;
  promptNameEdit_.reset();
  clearPromptWindowExtraction();
  promptContentGeneration.set(*promptContentGeneration + 1);
}

void AppModel::announcePrompt() {
  const auto priority = announcesPromptChangesPolitely_ ? AnnouncementPriority::low : AnnouncementPriority::high;
  const qsizetype waiting = static_cast<qsizetype>(promptQueue->size()) - 1;
  const auto shortcut = announcesShortcutHint_ ? dependencies_.spokenReviewShortcut() : std::nullopt;
  QString text;
  if (waiting == 0) {
    text = shortcut ? localized("Screenshot ready for a decision. Press %@ to review it.", {*shortcut})
                    : localized("Screenshot ready for a decision.");
  } else {
    text = shortcut ? localized("Screenshot ready for a decision. %1$lld more waiting. Press %2$@ to review it.",
                                {waiting, *shortcut})
                    : localized("Screenshot ready for a decision. %lld more waiting.", {waiting});
  }
  announce(text, priority);
}

void AppModel::resolvePrompts(const UUIDSet& ids) {
  for (const UUID& id : ids) popupAutoSaveScheduler_.drop(id);
  const auto head = queueHead();
  const bool headLeaves = head && ids.contains(*head);
  auto queue = *promptQueue;
  std::erase_if(queue, [&](const UUID& id) { return ids.contains(id); });
  promptQueue.set(std::move(queue));
  if (headLeaves) showNextPrompt();
}

void AppModel::dismissPrompt() {
  const auto head = queueHead();
  // A decision that is being carried out can't be waved away any more.
  if (head && !isSavingWindow(*head)) resolvePrompts({*head});
}

void AppModel::reviewPending(bool announcesFocus) {
  bool appeared = false;
  if (promptQueue->empty()) {
    // The person who has just used the shortcut is not told to use it.
    announcesShortcutHint_ = false;
    appeared = enqueueAllPending();
    announcesShortcutHint_ = true;
  }
  if (promptQueue->empty()) {
    announce(localized("No screenshots are waiting for a decision."), AnnouncementPriority::high);
    return;
  }
  dependencies_.promptPresenter->focusForReview();
  promptFocusRequest.set(*promptFocusRequest + 1);
  if (announcesFocus && !appeared) announce(localized("Screenshot popup focused"), AnnouncementPriority::low);
}

}  // namespace quillmere
