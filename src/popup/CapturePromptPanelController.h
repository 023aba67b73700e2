#pragma once

#include <QtCore/QObject>
#include <functional>
#include <memory>
#include <unordered_map>

#include "foundation/Weak.h"
#include "imaging/ThumbnailLoader.h"
#include "popup/CaptureDecisionPanel.h"
#include "popup/CapturePromptContent.h"
#include "popup/CapturePromptView.h"
#include "popup/PanelPlacement.h"
#include "popup/PanelWindowSystem.h"

namespace quillmere {

/// The popup's window side: told to present and hide, it follows the model in between by itself. Many changes of the
/// model in one turn of the loop cost one update, and a change that shows nowhere costs no layout.
class CapturePromptPanelController final : public CapturePromptPresenting {
 public:
  struct Services {
    Executor* executor = nullptr;
    ThumbnailLoader* thumbnails = nullptr;
    PanelScreenProviding* screens = nullptr;
    PanelWindowSystem* windowSystem = nullptr;
    std::function<bool(const FileURL&)> isDataless;
    /// Where the capture was taken, in global top-left points, if the file says so.
    std::function<std::optional<QRectF>(const FileURL&)> captureRect;
    std::function<bool(const QString& fileName)> confirmDeletion;
  };
  explicit CapturePromptPanelController(Services services);
  ~CapturePromptPanelController() override;

  void present(const ScreenshotItem& item, AppModel& model) override;
  void hide() override;
  void focusForReview() override;
  bool isPointerEngaged() const override;

  const std::optional<CapturePromptContent>& content() const { return content_; }
  CaptureDecisionPanel* panel() const { return panel_.get(); }
  int updateCount() const { return updateCount_; }

 private:
  void makePanel(AppModel& model);
  void scheduleUpdate();
  void applyUpdate();
  void showPanel();
  void takeKeyboard();
  void followScreens();
  std::optional<QSize> thumbnailPixelSize(const ScreenshotItem& item);
  qreal naturalHeight();

  Services services_;
  std::unique_ptr<CaptureDecisionPanel> panel_;
  CapturePromptView* view_ = nullptr;  // the panel's own
  AppModel* model_ = nullptr;
  std::optional<CapturePromptContent> content_;
  Connection modelChanges_;
  QObject screenObserver_;
  std::optional<QRectF> screenFrame_;
  bool isUpdateScheduled_ = false;
  bool isApplyingUpdate_ = false;
  int updateCount_ = 0;
  std::unordered_map<FileURL, std::pair<std::optional<FileIdentity>, QSize>> thumbnailPixelSizes_;
  quintptr previousWindow_ = 0;
  Lifetime lifetime_;
};

}  // namespace quillmere
