#pragma once

#include <utility>
#include <vector>

#include "foundation/Signal.h"

namespace quillmere {

/// The fields of the model that observers can follow.
enum class ModelField {
  items,
  selectedItemIDs,
  lastTemporaryDuration,
  menuBarEnabled,
  showPopupThumbnail,
  analyzeScreenshots,
  modelAddress,
  foreignModelServers,
  showsDeleteImmediately,
  deletesChosenImmediately,
  deletesExpiredImmediately,
  popupAutoSaveEnabled,
  popupAutoSaveSeconds,
  popupWaitsForPause,
  popupPauseSeconds,
  popupGathersSeries,
  screenshotNaming,
  includesNonCaptureImages,
  promptError,
  inboxError,
  settingsError,
  backgroundIssue,
  watchFolderURL,
  watcherStatus,
  macOSScreenshotFolder,
  lastScreenshotLocationChange,
  watchFolderHasReceivedScreenshot,
  dismissedLocationMismatchPath,
  hasSeenWelcome,
  hotKeyShortcut,
  hotKeyError,
  loginItemStatus,
  unavailableItemIDs,
  evictedItemIDs,
  iCloudItemIDs,
  downloadStates,
  analyzingIDs,
  intelligenceUnavailability,
  foreignModelServer,
  promptQueue,
  leavingPrompts,
  promptFocusRequest,
  promptContentGeneration,
  promptWindowExtraction,
  unsavedWork,
};

/// What changed. It is told after the change.
struct ModelChange {
  enum class Rows { none, inserted, changed, removed };
  ModelField field;
  Rows rows = Rows::none;            ///< of `items` only
  std::vector<size_t> indices = {};  ///< ascending; of removed rows those that they had before
};

/// A field that anyone may read and follow, and that only its owner sets.
template <typename T, typename Owner, typename Change = ModelChange>
class Published {
 public:
  Published(Signal<const Change&>& changed, decltype(Change::field) field, T value = {})
      : changed_(changed), field_(field), value_(std::move(value)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const T& operator*() const { return value_; }
  const T* operator->() const { return &value_; }

 private:
  friend Owner;
  /// Answers whether the value became another one; only then is it told.
  bool set(T value) {
    if (value == value_) return false;
    value_ = std::move(value);
    changed_(Change{field_});
    return true;
  }
  /// Changes a large value in its place; `change` answers whether it did.
  template <typename Apply>
  bool modify(Apply change) {
    if (!change(value_)) return false;
    changed_(Change{field_});
    return true;
  }

  Signal<const Change&>& changed_;
  decltype(Change::field) field_;
  T value_;
};

}  // namespace quillmere
