#pragma once

#include <QtWidgets/QWidget>
#include <functional>

namespace quillmere {

class ActionButton;
class WorkIndicator;

/// The buttons that end a crop editor.
class CropEditorConfirmActions final : public QWidget {
 public:
  explicit CropEditorConfirmActions(QWidget* parent);

  void setCanSave(bool canSave);
  /// `obstacle`: why it can't be done with any selection, which is its help then; none where it can.
  void setCanReplace(bool canReplace, const QString& obstacle);
  /// Something is under way that one of them began.
  void setWorking(bool isWorking);
  std::function<void()> onCancel;
  std::function<void()> onReplace;
  std::function<void()> onSave;

  QWidget* cancelButton() const;

 private:
  WorkIndicator* indicator_;
  ActionButton* cancel_;
  ActionButton* replace_;
  ActionButton* save_;
};

/// What can be done instead of cropping into a file.
class CropEditorAlternateActions final : public QWidget {
 public:
  explicit CropEditorAlternateActions(QWidget* parent);

  void setShowsKeep(bool shows);
  void setCanKeep(bool canKeep);
  void setCanCopy(bool canCopy);
  std::function<void()> onKeep;
  std::function<void()> onCopy;

 private:
  ActionButton* keep_;
  ActionButton* copy_;
};

}  // namespace quillmere
