#pragma once

#include <QtWidgets/QWidget>
#include <functional>

namespace quillmere {

class ActionButton;
class ThemedLabel;

/// Above the picture of a crop editor: what it is for, the file's name, and what changes nothing in a file.
class CropEditorHeading final : public QWidget {
 public:
  CropEditorHeading(const QString& title, const QString& fileName, QWidget* parent);

  void setCanUndo(bool canUndo, bool canRedo);
  void setCanZoom(bool canZoom);
  std::function<void()> onUndo;
  std::function<void()> onRedo;
  std::function<void()> onFit;
  std::function<void()> onRealSize;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  ActionButton* makeButton(const QString& symbol, const QString& name,
                           std::function<void()> CropEditorHeading::*action);
  void elideName();

  const QString fileName_;
  ThemedLabel* name_;
  ActionButton* undo_;
  ActionButton* redo_;
  ActionButton* fit_;
  ActionButton* realSize_;
};

}  // namespace quillmere
