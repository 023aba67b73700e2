#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "editor/CropHistory.h"
#include "editor/CropNotes.h"
#include "editor/ReplaceabilityWatch.h"
#include "model/Protection.h"

namespace quillmere {

/// A crop editor without its widgets: it reads the picture, holds what is selected in it, and saves or copies that
/// part.
///
/// An action goes on after the editor was closed or is gone; if it then fails, the Inbox says so. Until it is closed
/// the record can't be deleted. Main thread only.
class ImageEditor {
 public:
  static constexpr Duration kMessageTime = seconds(4);

  /// `detectWindow`: it begins by looking for windows. Model and executor outlive it.
  ImageEditor(AppModel& model, Executor& executor, ScreenshotItem item, bool detectWindow);
  ~ImageEditor();

  /// Anything that can be asked here has become another.
  std::function<void()> onChanged;
  /// It has closed itself since an action is done; `saved` is the record of a new screenshot.
  std::function<void(std::optional<UUID> saved)> onDone;

  void open();
  /// Ends the reading and lets go of the record.
  void close();

  const ScreenshotItem& item() const { return item_; }
  bool detectsWindow() const { return detectsWindow_; }
  bool isLoading() const { return situation_.isLoading; }
  bool isWorking() const { return situation_.isWorking; }
  /// For the screen; null until it is read, and where it couldn't be.
  const QImage& shownPicture() const { return shown_; }
  bool hasPicture() const { return !image_.isNull(); }
  CropHistory& history() { return history_; }
  const CropSelection& selection() const { return history_.current(); }
  const CropSituation& situation() const { return situation_; }
  /// A note for now: what is being read, or what has been done.
  const std::optional<QString>& message() const { return message_; }
  /// Why the picture could not be read, or why the last action failed.
  const std::optional<QString>& error() const { return error_; }
  bool isConfirmingReplace() const { return isConfirmingReplace_; }

  /// Whether the selection can be changed now.
  bool canSelect() const { return hasPicture() && !isWorking(); }
  bool canSave() const { return CropNotes::canSave(selection(), situation_); }
  bool canReplace() const { return CropNotes::canReplace(selection(), situation_); }
  bool canKeep() const { return canSelect() && situation_.offersKeep && !isBeingDecided_; }

  /// As one step that can be undone.
  void change(const std::function<void(CropSelection&)>& something);
  void undo();
  void redo();
  /// The history was changed elsewhere.
  void selectionChanged();

  /// For those who can't see it.
  void announce(const QString& problem) const { model_.announce(problem, AnnouncementPriority::high); }

  void saveAsNew();
  /// Asks whether to replace the original, if that can be done.
  void askToReplace();
  void answerReplace(bool isConfirmed);
  void copy();
  void keep();

 private:
  void show(const AppModel::OpenedPicture& opened, QImage shown);
  void failToOpen();
  void follow();
  void followFile();
  void begin();
  void finish(std::optional<UUID> saved);
  void showMessage(const QString& text);
  void tell() const;
  static bool hasSucceeded(const Weak<ImageEditor>& self, AppModel& model, const QString& title,
                           const std::optional<QString>& failure);
  static Task<> runOpening(Weak<ImageEditor> self);
  static Task<> runSaving(Weak<ImageEditor> self, Weak<AppModel> model);
  static Task<> runAsking(Weak<ImageEditor> self);
  static Task<> runReplacing(Weak<ImageEditor> self, Weak<AppModel> model);
  static Task<> runCopying(Weak<ImageEditor> self, Weak<AppModel> model);
  static Task<> hideMessage(Weak<ImageEditor> self);

  AppModel& model_;
  Executor& executor_;
  const ScreenshotItem item_;
  const bool detectsWindow_;
  QImage image_;  ///< what is cropped: in its own colours
  QImage shown_;
  FileStamp readFrom_;
  CropHistory history_;
  CropSituation situation_;
  std::optional<QString> message_;
  std::optional<QString> error_;
  bool isBeingDecided_ = false;  ///< in the popup, which is saving its window: the decision that came first counts
  bool isConfirmingReplace_ = false;
  bool isOpen_ = true;
  std::unique_ptr<Protection> protection_;
  std::unique_ptr<ReplaceabilityWatch> watch_;
  Task<> opening_;
  Task<> hidingMessage_;
  Connection changes_;
  Lifetime lifetime_;
};

}  // namespace quillmere
