#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/Sharing.h"
#include "popup/CapturePromptContent.h"
#include "popup/PictureAction.h"
#include "popup/PromptActionGate.h"
#include "reading/ThumbnailLoader.h"

class QLineEdit;

namespace quillmere {

class PromptActions;
class PromptDetails;
class PromptErrorBanner;
class PromptHeader;
class PromptPreview;
class PromptPreviewNoticeView;
class PromptTextActions;

/// What stands on the card. It shows a `CapturePromptContent` and calls the model; its own state (the name being typed,
/// the chosen time, a notice) lives as long as the screenshot stays the same.
class CapturePromptView final : public QWidget {
 public:
  struct Services {
    AppModel* model = nullptr;
    Executor* executor = nullptr;
    ThumbnailLoader* thumbnails = nullptr;
    Sharing* sharing = nullptr;
  };
  CapturePromptView(Services services, QWidget* parent);

  /// The decisions, which stand below the rest and never scroll away with it. For the panel to take.
  QWidget* footer() const { return footer_; }

  void show(const CapturePromptContent& content);
  /// As the close button does: the screenshot stays, and the next one comes up.
  void closePrompt();
  /// The card has just come up under the pointer: a click that was meant for what was there counts for nothing.
  void holdClicks();
  /// The popup has closed: whatever it shows next starts anew, also the same screenshot.
  void clear();
  /// At the card's width, margins included; for the content shown last, without what comes and goes by itself.
  int naturalHeight();
  /// Of a row that comes and goes by itself, in points.
  int extraHeight() const;
  std::function<void()> onExtraHeightChanged;
  std::function<void()> onFontChanged;
  /// The whole description of the screenshot on show is wanted.
  std::function<void()> onMore;
  /// The person clicked where the keyboard is needed.
  std::function<void()> onKeyboardWanted;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void wire();
  void orderControls();
  void beginItem();
  bool followStartingName();
  void tellAnalysis(const ScreenshotItem& before, bool isNameTaken) const;
  void showActions();
  void reportEdit();
  bool gateAllows() const;
  void notePress(const QEvent& event);
  std::optional<QString> newName() const;
  void runGated(const std::function<void()>& action);
  void chooseTemporary();
  void chooseKeep();
  void chooseCopy();
  void chooseTrash();
  bool handleName(QEvent& event);
  bool handleNameKey(const QKeyEvent& event);
  void toggleExtraction();
  void run(PictureAction action, QWidget& button);
  void copyText();
  void setCopyingText(bool isCopying);
  void tell(std::optional<PromptPreviewNotice> notice);
  PromptPreviewNoticeView& noticeView() const;

  static Task<> decideTemporary(Weak<CapturePromptView> self, UUID id);
  static Task<> decideKeep(Weak<CapturePromptView> self, UUID id);
  static Task<> dispose(Weak<AppModel> model, UUID id);
  static Task<> copy(Weak<CapturePromptView> self);
  static Task<> showCopied(Weak<CapturePromptView> self);
  static Task<> extract(Weak<CapturePromptView> self, bool isOn);
  static Task<> copyText(Weak<CapturePromptView> self);
  static Task<> share(Weak<CapturePromptView> self, QWidget* anchor);
  static Task<> drag(Weak<CapturePromptView> self);
  bool isShown(const UUID& id) const { return content_ && content_->item.id == id; }

  Services services_;
  AppModel& model_;
  std::optional<CapturePromptContent> content_;
  PromptActionGate gate_;
  std::optional<UUID> pressedOn_;  ///< the screenshot on show when a button or key went down that is not up yet
  QString nameSeed_;
  Task<> copiedNote_;
  bool isCopyingText_ = false;
  bool isChoosingTarget_ = false;

  PromptHeader* header_;
  PromptPreview* preview_;
  PromptDetails* details_;
  PromptTextActions* textActions_;
  PromptPreviewNoticeView* noticeRow_;
  PromptErrorBanner* errorBanner_;
  QWidget* footer_;
  PromptActions* actions_;
  Lifetime lifetime_;
};

}  // namespace quillmere
