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
      recess_.foretold(CaptureSigns::Sign::request, services_.executor->instant());
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

/// At once: the tool looks in a moment.
void CapturePromptPanelController::keepAway() {
  if (panel_ && panel_->isVisible()) {
    isAway_ = true;
    takesKeyboardBack_ = panel_->isActiveWindow();
    panel_->vanish();
  }
  comeBackWhenOver();
}

void CapturePromptPanelController::comeBackWhenOver() {
  if (recessEnd_) services_.executor->cancelDelay(*std::exchange(recessEnd_, std::nullopt));
  if (!isAway_) return;
  for (const CaptureSigns* signs : services_.captureSigns) {
    if (signs->isChoosing()) return;
  }
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
  showAsNoteIfWanted();
  applyUpdate();
  showPanel();
  if (std::exchange(takesKeyboardBack_, false)) takeKeyboard();
}

/// Only when the popup comes up: what a person looks at is not folded away. A card that had the keyboard is being used.
void CapturePromptPanelController::showAsNoteIfWanted() {
  const bool isSeries = model_->prompts().queue->size() > 1;
  isNote_ = isSeries && *model_->settings().popupGathersSeries && !takesKeyboardBack_;
}

void CapturePromptPanelController::openNote() {
  isNote_ = false;
  view_->holdClicks();
  applyUpdate();
}

}  // namespace quillmere
