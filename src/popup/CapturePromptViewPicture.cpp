// What the card does with the picture that it shows.

#include <QtGui/QDrag>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtGui/QRasterWindow>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

#include "controls/PictureMimeData.h"
#include "foundation/Localized.h"
#include "popup/CapturePromptView.h"
#include "popup/PromptDetails.h"
#include "popup/PromptPreview.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"
#include "popup/PromptTextActions.h"

namespace quillmere {
namespace {

QIcon iconOf(const ShareTarget& target) {
  const bool isFile = target.icon.startsWith(QLatin1Char('/'));
  const QIcon icon = isFile ? QIcon(target.icon) : QIcon::fromTheme(target.icon);
  // A file that is no picture leaves the icon empty as well, and names would not stand below each other.
  if (!icon.isNull() && !icon.pixmap(16).isNull()) return icon;
  return QIcon::fromTheme(QStringLiteral("application-x-executable"));
}

/// In a menu a tab begins another column and an ampersand underlines a letter.
QString menuText(const QString& name, const QFontMetrics& metrics) {
  constexpr int kWidest = 320;
  QString text = metrics.elidedText(name.simplified(), Qt::ElideRight, kWidest);
  return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// While it lives the record's file stays where it is, and its popup does not time out.
class Protection {
 public:
  Protection(AppModel& model, const UUID& id) : model_(model), id_(id) { model_.protect(id_); }
  ~Protection() { model_.unprotect(id_); }
  Protection(const Protection&) = delete;
  Protection& operator=(const Protection&) = delete;

 private:
  AppModel& model_;
  UUID id_;
};

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
  const Protection protection(model, id);
  QMenu menu(&anchor);
  for (size_t i = 0; i < targets.size(); ++i) {
    if (i > 0 && targets[i].group != targets[i - 1].group) menu.addSeparator();
    menu.addAction(iconOf(targets[i]), menuText(targets[i].name, menu.fontMetrics()))->setData(targets[i].id);
  }
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
  const auto asking = self->services_.sharing->targets(type);
  const auto targets = co_await asking;
  if (!self) co_return;
  std::optional<QString> target;
  if (self->isShown(item.id)) target = chooseTarget(self->model_, item.id, targets, *anchor);
  if (self) self->isChoosingTarget_ = false;
  if (!target || !self || !self->isShown(item.id)) co_return;
  const auto preparing = self->model_.prepareTransfer(self->content_->item, self->newName());
  const auto prepared = co_await preparing;
  if (!self || !prepared) co_return;
  const auto sharing = self->services_.sharing->share(*prepared, *target);
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
  const Protection protection(self->model_, id);
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
