#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <vector>

#include "popup/CapturePromptContent.h"

namespace quillmere {

class PreviewButton;

/// What can be done with the picture of the preview, in its top trailing corner.
class PromptPreviewActions final : public QWidget {
 public:
  explicit PromptPreviewActions(QWidget* parent);

  void show(const CapturePromptContent& content);
  void setCopyingText(bool isCopying);

  std::function<void()> onExtract;
  std::function<void()> onCopyText;
  std::function<void(QWidget& anchor)> onShare;
  /// For the order of the card's controls.
  std::vector<QWidget*> controls() const;

 private:
  PreviewButton* extract_;
  PreviewButton* copyText_;
  PreviewButton* share_;
};

}  // namespace quillmere
