#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "imaging/ThumbnailLoader.h"
#include "popup/CapturePromptContent.h"
#include "popup/PromptActionGate.h"

class QLabel;
class QLineEdit;

namespace quillmere {

class ActionButton;
class AnalysisStatusRow;
class DurationPicker;
class PromptErrorBanner;
class PromptThumbnail;

/// What stands on the card. It shows a `CapturePromptContent` and calls the model; its own state (the name being typed,
/// the chosen time) lives as long as the screenshot stays the same.
class CapturePromptView final : public QWidget {
 public:
  CapturePromptView(AppModel& model, Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent);

  void show(const CapturePromptContent& content);
  /// The popup has closed: whatever it shows next starts anew, also the same screenshot.
  void clear() { content_.reset(); }
  /// The person clicked where the keyboard is needed.
  std::function<void()> onKeyboardWanted;
  /// Asks before a file is deleted for good; true to go on.
  std::function<bool(const QString& fileName)> confirmDeletion;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* makeHeader();
  QWidget* makeNameBlock();
  QWidget* makeActions();
  void beginItem();
  void followStartingName();
  void refreshTexts();
  void refreshCaption();
  void reportEdit();
  bool gateAllows() const;
  std::optional<QString> newName() const;
  void runGated(const std::function<void()>& action);
  void chooseTemporary();
  void chooseKeep();
  void chooseTrash();
  bool handleNameKey(int key);

  AppModel& model_;
  Executor& executor_;
  std::optional<CapturePromptContent> content_;
  PromptActionGate gate_;
  QString nameSeed_;

  QLabel* queueCount_ = nullptr;
  ActionButton* closeButton_ = nullptr;
  PromptThumbnail* thumbnail_ = nullptr;
  AnalysisStatusRow* analysis_ = nullptr;
  QLabel* caption_ = nullptr;
  QLineEdit* nameField_ = nullptr;
  QLabel* extension_ = nullptr;
  PromptErrorBanner* errorBanner_ = nullptr;
  ActionButton* temporaryButton_ = nullptr;
  ActionButton* keepButton_ = nullptr;
  ActionButton* trashButton_ = nullptr;
  DurationPicker* durationPicker_ = nullptr;
};

}  // namespace quillmere
