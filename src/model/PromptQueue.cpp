#include "model/PromptQueue.h"

#include <algorithm>

#include "foundation/Localized.h"

namespace quillmere {

PromptQueue::PromptQueue(const AppModelDependencies& dependencies, const ScreenshotList& items, PromptStage& stage,
                         Signal<const ModelChange&>& changed)
    : queue(changed, ModelField::promptQueue),
      focusRequest(changed, ModelField::promptFocusRequest, 0),
      contentGeneration(changed, ModelField::promptContentGeneration, 0),
      dependencies_(dependencies),
      items_(items),
      stage_(stage) {}

std::optional<UUID> PromptQueue::front() const {
  return queue->empty() ? std::nullopt : std::optional(queue->front());
}

void PromptQueue::enqueue(const UUID& id) {
  if (!waiting_.insert(id).second) return;
  queue.modify([&](std::vector<UUID>& ids) {
    ids.push_back(id);
    return true;
  });
  if (queue->size() == 1) showNext();
}

void PromptQueue::showNext() {
  auto undecided = *queue;
  std::erase_if(undecided, [&](const UUID& id) {
    const ScreenshotItem* item = items_.find(id);
    const bool isDecided = !item || item->state != ScreenshotItem::State::pending;
    if (isDecided) waiting_.erase(id);
    return isDecided;
  });
  queue.set(std::move(undecided));
  const auto next = front();
  const ScreenshotItem* item = next ? items_.find(*next) : nullptr;
  if (!item) {
    setVisible(std::nullopt);
    dependencies_.promptPresenter->hide();
    return;
  }
  stage_.promptIsComing();
  setVisible(next);
  stage_.showPrompt(*item);
  announceFront();
}

void PromptQueue::setVisible(const std::optional<UUID>& id) {
  if (id == visible_) return;
  visible_ = id;
  stage_.promptIsLeft();
  contentGeneration.set(*contentGeneration + 1);
}

void PromptQueue::resolve(const UUIDSet& ids) {
  const auto before = front();
  const bool frontLeaves = before && ids.contains(*before);
  size_t leaving = 0;
  for (const UUID& id : ids) leaving += waiting_.erase(id);
  queue.modify([&](std::vector<UUID>& waiting) {
    return leaving > 0 && std::erase_if(waiting, [&](const UUID& id) { return ids.contains(id); }) > 0;
  });
  if (frontLeaves) showNext();
}

void PromptQueue::review(const std::function<std::vector<UUID>()>& pending, FocusNews news) {
  bool hasAppeared = false;
  if (queue->empty()) {
    // The person who has just used the shortcut is not told to use it.
    hintsAtShortcut_ = false;
    for (const UUID& id : pending()) enqueue(id);
    hintsAtShortcut_ = true;
    hasAppeared = !queue->empty();
  }
  if (queue->empty()) {
    announce(localized("No screenshots are waiting for a decision."), AnnouncementPriority::high);
    return;
  }
  dependencies_.promptPresenter->focusForReview();
  focusRequest.set(*focusRequest + 1);
  if (news == FocusNews::announced && !hasAppeared) {
    announce(localized("Screenshot popup focused"), AnnouncementPriority::low);
  }
}

void PromptQueue::announceFront() const {
  const qsizetype waiting = static_cast<qsizetype>(queue->size()) - 1;
  const auto shortcut = hintsAtShortcut_ ? stage_.spokenReviewShortcut() : std::nullopt;
  QString text;
  if (waiting == 0) {
    text = shortcut ? localized("Screenshot ready for a decision. Press %@ to review it.", {*shortcut})
                    : localized("Screenshot ready for a decision.");
  } else {
    text = shortcut ? localized("Screenshot ready for a decision. %1$lld more waiting. Press %2$@ to review it.",
                                {waiting, *shortcut})
                    : localized("Screenshot ready for a decision. %lld more waiting.", {waiting});
  }
  announce(text, priority_);
}

void PromptQueue::announce(const QString& text, AnnouncementPriority priority) const {
  dependencies_.announcer->announce(text, priority);
}

}  // namespace quillmere
