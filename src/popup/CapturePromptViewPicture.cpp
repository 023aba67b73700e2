// What the card does with the picture that it shows.

#include <QtGui/QDrag>
#include <QtGui/QGuiApplication>
#include <QtGui/QRasterWindow>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

#include "controls/PictureMimeData.h"
#include "controls/TargetMenu.h"
#include "foundation/Localized.h"
#include "model/Protection.h"
#include "popup/CapturePromptView.h"
#include "popup/PromptDetails.h"
#include "popup/PromptPreview.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"
#include "popup/PromptTextActions.h"

namespace quillmere {
namespace {

/// While it lives keys come to this program, so that Escape ends a drag of a window that never had the keyboard; the
/// other application keeps it for afterwards. They come by a window of which the window manager knows nothing: some
/// take a window that gets all keys for the active one.
class GrabbedKeyboard {
 public:
  GrabbedKeyboard() {
    window_.setFlags(Qt::ToolTip | Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    window_.setGeometry(-1, -1, 1, 1);
    window_.show();
    window_.setKeyboardGrabEnabled(true);
  }
  ~GrabbedKeyboard() { window_.setKeyboardGrabEnabled(false); }
  GrabbedKeyboard(const GrabbedKeyboard&) = delete;
  GrabbedKeyboard& operator=(const GrabbedKeyboard&) = delete;

 private:
  QRasterWindow window_;
};

/// The target that the person chooses; none when the menu is closed without a choice.
std::optional<QString> chooseTarget(AppModel& model, const UUID& id, const std::vector<ShareTarget>& targets,
                                    QWidget& anchor) {
  const Protection protection(model, {id});
  QMenu menu(&anchor);
  std::vector<MenuTarget> shown;
  for (const ShareTarget& target : targets) {
    const bool beginsGroup = !shown.empty() && target.group != targets[shown.size() - 1].group;
    shown.push_back({target.id, target.name, target.icon, beginsGroup});
  }
  addTargets(menu, shown);
  if (targets.empty()) menu.addAction(localized("No app on this computer takes pictures"))->setEnabled(false);
  const QAction* chosen = menu.exec(anchor.mapToGlobal(QPoint(0, anchor.height() + 4)));
  return chosen && chosen->data().isValid() ? std::optional(chosen->data().toString()) : std::nullopt;
}

}  // namespace

void CapturePromptView::run(PictureAction action, QWidget& button) {
  switch (action) {
    case PictureAction::copyText:
      copyText();
      break;
    case PictureAction::share:
      share(lifetime_.weak(this), &button).detach();
      break;
  }
}

// --- Extract Window ---

void CapturePromptView::toggleExtraction() {
  runGated([this] { extract(lifetime_.weak(this), !content_->windowExtraction).detach(); });
}

Task<> CapturePromptView::extract(Weak<CapturePromptView> self, bool isOn) {
  const UUID id = self->content_->item.id;
  const auto extraction = self->model_.setPromptWindowExtraction(self->content_->item, isOn);
  const auto notice = co_await extraction;
  if (self && self->isShown(id)) self->tell(notice);
}

// --- Copy Text ---

void CapturePromptView::copyText() {
  if (isCopyingText_) return;
  runGated([this] { copyText(lifetime_.weak(this)).detach(); });
}

Task<> CapturePromptView::copyText(Weak<CapturePromptView> self) {
  const UUID id = self->content_->item.id;
  self->setCopyingText(true);
  const auto copying = self->model_.copyRecognizedText(self->content_->item);
  const auto notice = co_await copying;
  if (!self || !self->isShown(id)) co_return;
  self->setCopyingText(false);
  self->tell(notice);
}

void CapturePromptView::setCopyingText(bool isCopying) {
  isCopyingText_ = isCopying;
  preview_->actions().setWorking(PictureAction::copyText, isCopying);
  textActions_->setWorking(PictureAction::copyText, isCopying);
}

void CapturePromptView::tell(std::optional<PromptPreviewNotice> notice) {
  if (notice) noticeView().show(*notice);
}

PromptPreviewNoticeView& CapturePromptView::noticeView() const {
  return content_->showThumbnail ? preview_->notice() : *noticeRow_;
}

// --- Share and drag ---

Task<> CapturePromptView::share(Weak<CapturePromptView> self, QWidget* anchor) {
  // One menu at a time.
  if (!self->content_ || self->isChoosingTarget_) co_return;
  const ScreenshotItem item = self->content_->item;
  const bool isCropped = self->content_->shownPart().has_value();
  const QString type = isCropped ? imageContentType(PictureFormat::png) : imageContentType(item.url);
  self->isChoosingTarget_ = true;
  const auto asking = self->services_.sharing->targets(QStringList(type));
  const auto targets = co_await asking;
  if (!self) co_return;
  std::optional<QString> target;
  if (self->isShown(item.id)) target = chooseTarget(self->model_, item.id, targets, *anchor);
  if (self) self->isChoosingTarget_ = false;
  if (!target || !self || !self->isShown(item.id)) co_return;
  const auto preparing = self->model_.prepareTransfer(self->content_->item, self->newName());
  const auto prepared = co_await preparing;
  if (!self || !prepared) co_return;
  const auto sharing = self->services_.sharing->share(std::vector<PreparedTransfer>(1, *prepared), *target);
  const bool isTaken = co_await sharing;
  if (!self || isTaken || !self->isShown(item.id)) co_return;
  self->model_.show(ErrorScope::popup, localized("Couldn’t Share Screenshot"),
                    localized("The app that you chose couldn’t be opened. Choose another one."));
}

/// The file is made ready first, which takes a moment for one under another name.
Task<> CapturePromptView::drag(Weak<CapturePromptView> self) {
  if (!self->content_ || !self->content_->canReadImage) co_return;
  const UUID id = self->content_->item.id;
  const auto preparing = self->model_.prepareTransfer(self->content_->item, self->newName());
  const auto prepared = co_await preparing;
  if (!self || !prepared || !self->isShown(id)) co_return;
  if (!QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) co_return;
  const Protection protection(self->model_, {id});
  auto* drag = new QDrag(self.get());
  drag->setMimeData(new PictureMimeData(prepared->file, prepared->contentType, std::nullopt));
  const QPixmap picture = self->preview_->dragPicture();
  drag->setPixmap(picture);
  drag->setHotSpot(QRectF(QPointF(), picture.deviceIndependentSize()).center().toPoint());
  std::optional<GrabbedKeyboard> keyboard;
  if (!self->isActiveWindow()) keyboard.emplace();
  drag->exec(Qt::CopyAction);
}

}  // namespace quillmere
