#pragma once

#include <QtCore/QPointer>

#include "editor/ImageEditor.h"
#include "editor/ReplaceQuestion.h"

class QStackedWidget;

namespace quillmere {

class CropBoundsFields;
class CropCanvas;
class CropEditorAlternateActions;
class CropEditorConfirmActions;
class CropEditorHeading;
class CropEditorStatus;
class DetectedContentRow;
class ThemedLabel;
class WorkIndicator;

/// The crop editor, a sheet over its window: the picture with the selection on it, and what can be done with both. It
/// takes its size from the window and follows it. The editor is closed as soon as the sheet is not seen any more.
class ImageEditorView final : public CardDialog {
 public:
  /// `detectWindow`: it begins by looking for windows. It begins to read at once.
  ImageEditorView(AppModel& model, Executor& executor, ScreenshotItem item, bool detectWindow, QWidget* window);
  ~ImageEditorView() override;

  /// A part was saved as this record, and the sheet is about to close.
  std::function<void(const UUID& saved)> onSaved;

  ImageEditor& editor() { return editor_; }
  Alert* question() const { return question_.alert(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void layOut();
  QWidget* makeWaiting();
  QWidget* makeControls();
  QWidget* makeActions();
  void connectEditor();
  void connectParts();
  void addKeys();

  void act(void (ImageEditor::*action)());
  void undo();
  void redo();
  void edit(const QRect& bounds);
  void refresh();
  void showPicture();
  void showStatus();
  void moveKeyboard();
  void fitToWindow();

  ImageEditor editor_;
  CropEditorHeading* heading_;
  QStackedWidget* stage_;
  CropCanvas* canvas_;
  WorkIndicator* waitingRing_ = nullptr;
  ThemedLabel* waitingText_ = nullptr;
  QWidget* waiting_;  ///< instead of the picture; both above stand on it
  ThemedLabel* note_;
  DetectedContentRow* detected_ = nullptr;
  CropBoundsFields* bounds_ = nullptr;
  QWidget* controls_;  ///< both above
  CropEditorStatus* status_;
  CropEditorAlternateActions* alternatives_ = nullptr;
  CropEditorConfirmActions* confirmation_ = nullptr;
  ReplaceQuestion question_;
  QPointer<QWidget> keyboardBefore_;  ///< what had it when an action began
  bool isWorking_ = false;
};

}  // namespace quillmere
