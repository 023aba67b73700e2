#include "popup/CapturePromptView.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include "foundation/Localized.h"
#include "popup/PanelPlacement.h"
#include "popup/PromptActions.h"
#include "popup/PromptDetails.h"
#include "popup/PromptErrorBanner.h"
#include "popup/PromptHeader.h"
#include "popup/PromptPreview.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"
#include "popup/PromptTextActions.h"

namespace quillmere {
namespace {

constexpr int kPadding = 16;
constexpr int kRowSpacing = 12;

bool isReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

CapturePromptView::CapturePromptView(Services services, QWidget* parent)
    : QWidget(parent),
      services_(services),
      model_(*services_.model),
      header_(new PromptHeader(this)),
      preview_(new PromptPreview(*services_.executor, *services_.thumbnails, this)),
      details_(new PromptDetails(this)),
      textActions_(new PromptTextActions(this)),
      noticeRow_(new PromptPreviewNoticeView(*services_.executor, this)),
      errorBanner_(new PromptErrorBanner(this)),
      footer_(new QWidget(this)),
      actions_(new PromptActions(footer_)) {
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kPadding, kPadding, kPadding, 0);
  rows->setSpacing(kRowSpacing);
  for (QWidget* row :
       std::initializer_list<QWidget*>{header_, preview_, details_, textActions_, noticeRow_, errorBanner_}) {
    rows->addWidget(row);
  }
  auto* last = new QVBoxLayout(footer_);
  last->setContentsMargins(kPadding, kRowSpacing, kPadding, kPadding);
  last->addWidget(actions_);
  wire();
  orderControls();
}

void CapturePromptView::wire() {
  header_->onClose = [this] { closePrompt(); };
  preview_->onDragBegun = [this] { drag(lifetime_.weak(this)).detach(); };
  preview_->actions().onExtract = [this] { toggleExtraction(); };
  preview_->actions().onAction = [this](PictureAction action, QWidget& button) { run(action, button); };
  details_->onAnalyze = [this] {
    if (content_) model_.startAnalysis(content_->item.id);
  };
  details_->onMore = [this] {
    if (onMore) onMore();
  };
  details_->onNameChanged = [this] { reportEdit(); };
  details_->onNameRefused = [this](const QString& note) { model_.announce(note, AnnouncementPriority::low); };
  textActions_->onAction = [this](PictureAction action, QWidget& button) { run(action, button); };
  noticeRow_->onVisibilityChanged = [this] {
    if (onExtraHeightChanged) onExtraHeightChanged();
  };
  errorBanner_->onDismiss = [this] { runGated([this] { model_.dismissError(ErrorScope::popup); }); };
  actions_->onTemporary = [this] { chooseTemporary(); };
  actions_->onKeep = [this] { chooseKeep(); };
  actions_->onCopy = [this] { chooseCopy(); };
  actions_->onTrash = [this] { chooseTrash(); };
}

/// As the eye goes, from the top.
void CapturePromptView::orderControls() {
  std::vector<QWidget*> order{header_->closeButton()};
  const auto add = [&order](const std::vector<QWidget*>& controls) {
    order.insert(order.end(), controls.begin(), controls.end());
  };
  add(preview_->actions().controls());
  add({&details_->description(), &details_->moreButton(), &details_->analysisButton(), &details_->nameField()});
  add(textActions_->controls());
  add({errorBanner_->control()});
  add(actions_->controls());
  for (size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
  // Return is the card's, and some desktops' themes have it press the button that has the focus.
  for (QWidget* control : order) control->installEventFilter(this);
  // What its buttons leave is the card's, wherever it stands.
  footer_->installEventFilter(this);
}

// --- What is shown ---

void CapturePromptView::show(const CapturePromptContent& content) {
  const bool isNewItem = !isShown(content.item.id);
  const bool isFocusRequested = !isNewItem && content_->focusRequest != content.focusRequest;
  const auto before = std::exchange(content_, content);
  if (isNewItem) {
    beginItem();
  } else {
    gate_.observe(content.contentGeneration, services_.executor->instant());
    tellAnalysis(before->item, followStartingName());
  }
  header_->show(content.queuedCount, content.isDiskSlow);
  preview_->setVisible(content.showThumbnail);
  if (content.showThumbnail) preview_->show(content);
  details_->show(content);
  textActions_->setVisible(!content.showThumbnail && content.canReadImage);
  if (content.showThumbnail) noticeRow_->clear();
  if (content.error) errorBanner_->show(*content.error);
  errorBanner_->setVisible(content.error.has_value());
  showActions();
  if (isFocusRequested) actions_->mainButton()->setFocus(Qt::OtherFocusReason);
}

void CapturePromptView::holdClicks() {
  gate_.changedAt = services_.executor->instant();
}

void CapturePromptView::clear() {
  content_.reset();
  preview_->clear();
  noticeRow_->clear();
  details_->nameField().clear();
}

/// A main button that can't be pressed for a moment gets the keyboard back afterwards, instead of leaving it to
/// whichever control comes next.
void CapturePromptView::showActions() {
  QWidget* main = actions_->mainButton();
  const bool couldDecide = actions_->canDecide();
  if (!content_->canDecide() && main->hasFocus()) setFocus(Qt::OtherFocusReason);
  actions_->show(*content_);
  if (!couldDecide && content_->canDecide() && hasFocus()) main->setFocus(Qt::OtherFocusReason);
}

void CapturePromptView::beginItem() {
  actions_->setDuration(*model_.settings().lastTemporaryDuration);
  gate_ = {content_->contentGeneration, services_.executor->instant()};
  nameSeed_ = displayName(content_->item, content_->naming);
  details_->nameField().setText(nameSeed_);
  details_->nameField().setCursorPosition(0);
  copiedNote_.cancel();
  actions_->showCopied(false);
  setCopyingText(false);
  preview_->notice().clear();
  noticeRow_->clear();
  if (!content_->reportsEdits) return;
  // Also without a request: the keyboard, once it is here, starts at the main button.
  actions_->mainButton()->setFocus(Qt::OtherFocusReason);
  reportEdit();
}

/// A suggestion that comes late takes the place of the name only while nobody has typed. Whether it did.
bool CapturePromptView::followStartingName() {
  const QString name = displayName(content_->item, content_->naming);
  QLineEdit& field = details_->nameField();
  if (name == nameSeed_ || field.text() != nameSeed_) return false;
  nameSeed_ = name;
  field.setText(name);
  reportEdit();
  return true;
}

/// Who works in another window is not disturbed.
void CapturePromptView::tellAnalysis(const ScreenshotItem& before, bool isNameTaken) const {
  if (!content_->reportsEdits || !isActiveWindow()) return;
  const ScreenshotItem& item = content_->item;
  if (item.imageDescription && item.imageDescription != before.imageDescription) {
    const QString description = QString::fromUtf8(*item.imageDescription);
    model_.announce(localized("Description: %@", {description}), AnnouncementPriority::low);
  }
  if (isNameTaken && item.suggestedName != before.suggestedName) {
    model_.announce(localized("Suggested filename: %@", {nameSeed_}), AnnouncementPriority::low);
  }
}

void CapturePromptView::reportEdit() {
  if (!content_ || !content_->reportsEdits) return;
  const QLineEdit& field = details_->nameField();
  model_.setPromptNameEdit(
      AppModel::PromptNameEdit{content_->item.id, field.text(), field.text() != nameSeed_, field.hasFocus()});
}

int CapturePromptView::naturalHeight() {
  constexpr int kWidth = static_cast<int>(PanelPlacement::kCardWidth);
  // Rows within rows tell of a change only in a later turn of the loop.
  for (QWidget* widget : findChildren<QWidget*>()) widget->updateGeometry();
  const auto height = [](QLayout& layout) {
    layout.activate();
    return layout.hasHeightForWidth() ? layout.totalHeightForWidth(kWidth) : layout.totalSizeHint().height();
  };
  const int card = height(*layout()) + height(*footer_->layout());
  return card - extraHeight() + 2 * static_cast<int>(PanelPlacement::kMargin);
}

void CapturePromptView::changeEvent(QEvent* event) {
  const bool changesSizes = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
  if (changesSizes && onFontChanged) onFontChanged();
  QWidget::changeEvent(event);
}

int CapturePromptView::extraHeight() const {
  return noticeRow_->isHidden() ? 0 : noticeRow_->sizeHint().height() + kRowSpacing;
}

// --- Decisions ---

bool CapturePromptView::gateAllows() const {
  // The model may have gone on while the card still shows the last screenshot.
  return content_ && !model_.isLeavingPrompt(content_->item.id) && (!pressedOn_ || *pressedOn_ == content_->item.id) &&
         content_->contentGeneration == *model_.prompts().contentGeneration &&
         gate_.allows(services_.executor->instant());
}

/// A press on one screenshot and its release on the next are no decision.
void CapturePromptView::notePress(const QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
      pressedOn_ = content_ ? std::optional(content_->item.id) : std::nullopt;
      break;
    case QEvent::MouseButtonRelease:
    case QEvent::KeyRelease:
      // After what the release does.
      QMetaObject::invokeMethod(
          this, [this] { pressedOn_.reset(); }, Qt::QueuedConnection);
      break;
    default:
      break;
  }
}

void CapturePromptView::runGated(const std::function<void()>& action) {
  if (gateAllows()) action();
}

/// None for the name that the file has: one that no person chose is not to be cleaned, nor one that is not text
/// mangled.
std::optional<QString> CapturePromptView::newName() const {
  const QString name = details_->nameField().text();
  return name == content_->item.url.displayStem() ? std::nullopt : std::optional(name);
}

void CapturePromptView::chooseTemporary() {
  if (gateAllows()) decideTemporary(lifetime_.weak(this), content_->item.id).detach();
}

Task<> CapturePromptView::decideTemporary(Weak<CapturePromptView> self, UUID id) {
  AppModel& model = self->model_;
  const auto decision = model.markTemporary(id, self->actions_->duration(), self->newName());
  co_await decision;
  if (!self) co_return;
  const ScreenshotItem* item = model.items().find(id);
  if (item && item->state == ScreenshotItem::State::temporary) {
    model.announce(localized("Screenshot marked as temporary."), AnnouncementPriority::low);
  }
}

void CapturePromptView::chooseKeep() {
  if (gateAllows()) decideKeep(lifetime_.weak(this), content_->item.id).detach();
}

Task<> CapturePromptView::decideKeep(Weak<CapturePromptView> self, UUID id) {
  AppModel& model = self->model_;
  const auto decision = model.keepPrompt(id, self->newName());
  co_await decision;
  if (!self) co_return;
  const ScreenshotItem* item = model.items().find(id);
  if (item && item->state == ScreenshotItem::State::permanent) {
    model.announce(localized("Screenshot kept."), AnnouncementPriority::low);
  }
}

void CapturePromptView::chooseCopy() {
  if (gateAllows()) copy(lifetime_.weak(this)).detach();
}

/// The button says so itself: where it was pressed is where the person looks.
Task<> CapturePromptView::copy(Weak<CapturePromptView> self) {
  const UUID id = self->content_->item.id;
  const auto copying = self->model_.copy(self->content_->item, ErrorScope::popup);
  const bool isCopied = co_await copying;
  if (!isCopied || !self || !self->isShown(id)) co_return;
  self->copiedNote_.cancel();
  self->copiedNote_ = showCopied(self);
}

Task<> CapturePromptView::showCopied(Weak<CapturePromptView> self) {
  constexpr Duration kShown = std::chrono::seconds(2);
  self->actions_->showCopied(true);
  auto pause = self->services_.executor->sleep(kShown);
  const bool hasElapsed = co_await pause;
  if (hasElapsed && self) self->actions_->showCopied(false);
}

void CapturePromptView::chooseTrash() {
  if (gateAllows()) dispose(model_.weak(), content_->item.id).detach();
}

/// What is on show may be another by the time that it is done, and even the popup be gone. Where it is refused the
/// banner says why.
Task<> CapturePromptView::dispose(Weak<AppModel> model, UUID id) {
  const bool isDeleting = *model->settings().deletesChosenImmediately;
  const auto disposing = model->disposeChosen(id, ErrorScope::popup);
  const auto disposal = co_await disposing;
  if (!model || disposal != AppModel::ChosenDisposal::done) co_return;
  model->announce(isDeleting ? localized("Screenshot deleted.") : localized("Screenshot moved to Trash."),
                  AnnouncementPriority::low);
}

void CapturePromptView::closePrompt() {
  runGated([this] { model_.dismissPrompt(); });
}

void CapturePromptView::keyPressEvent(QKeyEvent* event) {
  if (isReturn(*event)) {
    if (actions_->canDecide()) chooseTemporary();
  } else if (event->key() == Qt::Key_Escape) {
    closePrompt();
  } else {
    QWidget::keyPressEvent(event);
  }
}

/// The first Escape in the name field undoes typing; the next closes the popup.
bool CapturePromptView::handleNameKey(const QKeyEvent& event) {
  if (isReturn(event)) {
    chooseTemporary();
    return true;
  }
  if (event.key() != Qt::Key_Escape) return false;
  QLineEdit& field = details_->nameField();
  if (field.text() != nameSeed_) {
    field.setText(nameSeed_);
  } else {
    closePrompt();
  }
  return true;
}

bool CapturePromptView::eventFilter(QObject* watched, QEvent* event) {
  notePress(*event);
  if (watched == &details_->nameField()) return handleName(*event);
  // What is selected there is copied by a key, which must not go to another program.
  const bool isText = watched == &details_->description() && details_->description().focusPolicy() != Qt::NoFocus;
  if (isText && event->type() == QEvent::MouseButtonPress && onKeyboardWanted) onKeyboardWanted();
  if (event->type() != QEvent::KeyPress) return false;
  auto& key = static_cast<QKeyEvent&>(*event);
  const bool isOurs = watched == footer_ || isReturn(key);
  if (isOurs) keyPressEvent(&key);
  return isOurs;
}

bool CapturePromptView::handleName(QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
      if (onKeyboardWanted) onKeyboardWanted();
      return false;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      QMetaObject::invokeMethod(
          this, [this] { reportEdit(); }, Qt::QueuedConnection);
      return false;
    case QEvent::KeyPress:
      return handleNameKey(static_cast<QKeyEvent&>(event));
    default:
      return false;
  }
}

}  // namespace quillmere
