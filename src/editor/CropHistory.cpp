#include "editor/CropHistory.h"

namespace quillmere {

bool CropHistory::change(const std::function<void(CropSelection&)>& something) {
  CropSelection next = current_;
  something(next);
  if (next == current_) return false;
  if (!isInStep()) push(current_);
  current_ = std::move(next);
  return true;
}

void CropHistory::push(CropSelection selection) {
  future_.clear();
  past_.push_back(std::move(selection));
  if (past_.size() > kMostSteps) past_.erase(past_.begin());
}

void CropHistory::begin() {
  end();
  start_ = current_;
}

void CropHistory::end() {
  if (hasStepLedAway()) push(*std::move(start_));
  start_.reset();
}

void CropHistory::cancel() {
  if (!isInStep()) return;
  current_ = *std::move(start_);
  start_.reset();
}

void CropHistory::undo() {
  end();
  if (past_.empty()) return;
  future_.push_back(std::move(current_));
  current_ = std::move(past_.back());
  past_.pop_back();
}

void CropHistory::redo() {
  end();
  if (!canRedo()) return;
  past_.push_back(std::move(current_));
  current_ = std::move(future_.back());
  future_.pop_back();
}

}  // namespace quillmere
