#pragma once

#include <QtCore/QObject>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "foundation/Weak.h"
#include "popup/CaptureDecisionPanel.h"
#include "popup/CapturePromptContent.h"
#include "popup/CapturePromptView.h"
#include "popup/CaptureRecess.h"
#include "popup/PanelPlacement.h"
#include "popup/PanelWindowSystem.h"
#include "popup/PreviewSizes.h"
#include "reading/ThumbnailLoader.h"

namespace quillmere {

/// The popup's window side: told to present and hide, it follows the model in between by itself. Many changes of the
/// model in one turn of the loop cost one update, and a change that shows nowhere costs no layout.
class CapturePromptPanelController final : public CapturePromptPresenting {
 public:
  struct Services {
    Executor* executor = nullptr;
    ThumbnailLoader* thumbnails = nullptr;
    Sharing* sharing = nullptr;
    PanelScreenProviding* screens = nullptr;
    PanelWindowSystem* windowSystem = nullptr;
    std::vector<CaptureSigns*> captureSigns;
    /// Where the capture was taken, in global top-left points, if the file says so.
    std::function<std::optional<QRectF>(const FileURL&)> captureRect;
  };
  explicit CapturePromptPanelController(Services services);
  ~CapturePromptPanelController() override;

  void present(const ScreenshotItem& item, AppModel& model) override;
  void hide() override;
  void expect(const FileURL& url, AppModel& model) override;
  void focusForReview() override;
  /// Also while the popup keeps away from someone who takes screenshots, and while it is a note: nobody sees then what
  /// would be decided.
  bool isPointerEngaged() const override;

  const std::optional<CapturePromptContent>& content() const { return content_; }
  CaptureDecisionPanel* panel() const { return panel_.get(); }

  // For inspection alone.
  int updateCount() const { return updateCount_; }            ///< looks at the model
  int viewChangeCount() const { return viewChangeCount_; }    ///< changes of what the card shows
  int measurementCount() const { return measurementCount_; }  ///< layouts made to know a height

 private:
  struct MeasuredHeight {
    CapturePromptContent content;
    int height;  ///< points, margins included
  };

  void makePanel(AppModel& model);
  void openUnlessSizeIsSought();
  void open();
  void cancelOpening();
  void followCaptureSigns();
  void noteArrivals();
  void keepAway();
  bool isChoosing() const;
  bool isRecess() const;
  void comeBackWhenOver();
  void comeBack();
  bool isUsed() const;
  bool isAsking() const;
  void giveKeyboardBack(quintptr previous);
  static bool belongsTo(const QWidget* widget, const QWidget& window);
  void scheduleUpdate();
  void applyUpdate();
  bool onlyMoreWait(CapturePromptContent next) const;
  bool isTellingLater();
  std::optional<CapturePromptContent> makeContent();
  int measuredHeight(CapturePromptContent content);
  void setFrame(const QRect& frame);
  void followCountdown();
  void showAsNoteIfWanted();
  void openNote();
  void showPanel();
  void takeKeyboard();
  void followScreens();
  void followCompositing();
  void measureAnew();

  Services services_;
  PreviewSizes previewSizes_;
  std::unique_ptr<CaptureDecisionPanel> panel_;
  CapturePromptView* view_ = nullptr;  // the panel's own
  std::unique_ptr<CapturePromptView> measuringView_;
  AppModel* model_ = nullptr;
  std::optional<CapturePromptContent> content_;
  bool isNote_ = false;                        ///< several screenshots show as their number first
  std::optional<UUID> wholeDescriptionOf_;     ///< the screenshot whose long description is shown to its end
  std::list<MeasuredHeight> measuredHeights_;  // most recently used first
  Connection modelChanges_;
  Connection ticks_;
  QObject screenObserver_;
  Connection availableGeometryChanges_;
  Connection compositingChanges_;
  std::optional<QRectF> screenFrame_;
  QRect clickable_;
  std::optional<Executor::DelayID> opening_;  ///< the popup is about to come up
  std::vector<Connection> signs_;
  CaptureRecess recess_;
  bool isAway_ = false;       ///< hidden by a recess, else it would show
  bool wasCardSeen_ = false;  ///< since the popup came up
  std::optional<Executor::DelayID> recessEnd_;
  size_t queueLength_ = 0;
  bool isUpdateScheduled_ = false;
  std::optional<Executor::DelayID> tellingMore_;
  Instant tellingTime_;  ///< until when numbers that grew have used up their updates
  bool isApplyingUpdate_ = false;
  int updateCount_ = 0;
  int viewChangeCount_ = 0;
  int measurementCount_ = 0;
  quintptr previousWindow_ = 0;
  Lifetime lifetime_;
};

}  // namespace quillmere
