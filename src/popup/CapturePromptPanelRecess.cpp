#include <QtWidgets/QApplication>
#include <algorithm>

#include "popup/CapturePromptPanelController.h"

namespace quillmere {

void CapturePromptPanelController::followCaptureSigns() {
  for (CaptureSigns* signs : services_.captureSigns) {
    signs_.push_back(signs->seen.connect([this](CaptureSigns::Sign sign) {
      recess_.foretold(sign, services_.executor->instant());
      keepAway();
    }));
    signs_.push_back(signs->choosingEnded.connect([this] {
      // What was chosen becomes a file a little later.
      recess_.chosen(services_.executor->instant());
      keepAway();
    }));
  }
}

void CapturePromptPanelController::noteArrivals() {
  const size_t length = model_->prompts().queue->size();
  const bool hasGrown = length > queueLength_;
  queueLength_ = length;
  if (!hasGrown) return;
  const Settings& settings = model_->settings();
  const bool pauses = *settings.popupWaitsForPause;
  recess_.arrived(services_.executor->instant(),
                  pauses ? Duration(std::chrono::seconds(*settings.popupPauseSeconds)) : Duration());
  if (isAway_) {
    comeBackWhenOver();
  } else if (pauses && !isUsed()) {
    keepAway();
  }
}

/// At once: the tool looks in a moment. Not from under a question of the card's, which would be left without its
/// window.
void CapturePromptPanelController::keepAway() {
  if (!panel_ || isAsking() || !isRecess()) return comeBackWhenOver();
  if (QWidget* menu = QApplication::activePopupWidget(); belongsTo(menu, *panel_)) menu->close();
  const bool wasVisible = panel_->isVisible();
  const bool hadKeyboard = wasVisible && panel_->isActiveWindow();
  const quintptr previous = std::exchange(previousWindow_, 0);
  if (wasVisible) isAway_ = true;
  panel_->vanish();
  if (hadKeyboard) giveKeyboardBack(previous);
  comeBackWhenOver();
}

bool CapturePromptPanelController::isChoosing() const {
  return std::any_of(services_.captureSigns.begin(), services_.captureSigns.end(),
                     [](const CaptureSigns* signs) { return signs->isChoosing(); });
}

bool CapturePromptPanelController::isRecess() const {
  return isChoosing() || recess_.end(services_.executor->instant());
}

void CapturePromptPanelController::comeBackWhenOver() {
  if (recessEnd_) services_.executor->cancelDelay(*std::exchange(recessEnd_, std::nullopt));
  if (!isAway_ || isChoosing()) return;
  const Instant now = services_.executor->instant();
  const auto end = recess_.end(now);
  if (!end) return comeBack();
  recessEnd_ = services_.executor->startDelay(*end - now, [this](bool elapsed) {
    recessEnd_.reset();
    if (elapsed) comeBackWhenOver();
  });
}

void CapturePromptPanelController::comeBack() {
  if (recessEnd_) services_.executor->cancelDelay(*std::exchange(recessEnd_, std::nullopt));
  isAway_ = false;
  // Screens may have changed meanwhile.
  screenFrame_ = PanelPlacement::followScreen(screenFrame_, *services_.screens);
  showAsNoteIfWanted();
  applyUpdate();
  // It comes up under a pointer that may be clicking something else, and without the keyboard: someone may be typing.
  view_->holdClicks();
  showPanel();
}

/// Only before the card was seen: what a person looks at is not folded away.
void CapturePromptPanelController::showAsNoteIfWanted() {
  const bool isSeries = model_->prompts().queue->size() > 1;
  isNote_ = isSeries && *model_->settings().popupGathersSeries && !wasCardSeen_;
}

void CapturePromptPanelController::openNote() {
  isNote_ = false;
  wasCardSeen_ = true;
  view_->holdClicks();
  applyUpdate();
}

}  // namespace quillmere
