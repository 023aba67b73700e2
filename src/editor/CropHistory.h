#pragma once

#include <functional>
#include <vector>

#include "editor/CropSelection.h"

namespace quillmere {

/// The selection of a crop editor with what it was before, to be undone and redone.
class CropHistory {
 public:
  CropHistory() = default;
  explicit CropHistory(CropSelection first) : current_(std::move(first)) {}

  const CropSelection& current() const { return current_; }
  /// Answers whether something has become different. What was undone can't be redone after that, unless the step it
  /// belongs to comes to nothing.
  bool change(const std::function<void(CropSelection&)>& something);

  /// What changes from here to `end` is one step: a drag, or a key that is held. Ends one that is open.
  void begin();
  /// A step that led back to where it began is none.
  void end();
  /// Ends the step and takes it back.
  void cancel();
  bool isInStep() const { return start_.has_value(); }

  bool canUndo() const { return !past_.empty() || hasStepLedAway(); }
  bool canRedo() const { return !future_.empty() && !hasStepLedAway(); }
  /// Both end a step that is open.
  void undo();
  void redo();

  static constexpr size_t kMostSteps = 200;

 private:
  bool hasStepLedAway() const { return isInStep() && *start_ != current_; }
  void push(CropSelection selection);

  CropSelection current_;
  std::vector<CropSelection> past_;     ///< oldest first
  std::vector<CropSelection> future_;   ///< what comes next last
  std::optional<CropSelection> start_;  ///< of the step that is open
};

}  // namespace quillmere
