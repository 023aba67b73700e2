#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <map>
#include <vector>

#include "popup/CapturePromptContent.h"
#include "popup/PictureAction.h"

namespace quillmere {

class PreviewButton;

/// What can be done with the picture of the preview, in its top trailing corner.
class PromptPreviewActions final : public QWidget {
 public:
  explicit PromptPreviewActions(QWidget* parent);

  void show(const CapturePromptContent& content);
  /// Something is under way that the action began.
  void setWorking(PictureAction action, bool isWorking);

  std::function<void()> onExtract;
  OnPictureAction onAction;
  /// For the order of the card's controls.
  const std::vector<QWidget*>& controls() const { return controls_; }

 private:
  PreviewButton* extract_;
  std::map<PictureAction, PreviewButton*> buttons_;
  std::vector<QWidget*> controls_;
};

}  // namespace quillmere
