#include "popup/CapturePromptPanelController.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <cmath>

#include "popup/LivePanelScreens.h"

namespace quillmere {
namespace {

constexpr size_t kMostMeasuredHeights = 8;
/// How long a popup waits for the size of its picture, so that its first frame has the height of all that follow.
constexpr Duration kLongestWaitForSize = std::chrono::milliseconds(20);
constexpr int kMargin = static_cast<int>(PanelPlacement::kMargin);

}  // namespace

/// Also across windows, as from a menu to its button.
bool CapturePromptPanelController::belongsTo(const QWidget* widget, const QWidget& window) {
  while (widget && widget != &window) widget = widget->parentWidget();
  return widget != nullptr;
}

CapturePromptPanelController::CapturePromptPanelController(Services services)
    : services_(std::move(services)), previewSizes_(*services_.thumbnails) {
  previewSizes_.onLooked = [this](bool isFound) {
    if (opening_) {
      openUnlessSizeIsSought();
    } else if (isFound) {
      scheduleUpdate();
    }
  };
  const auto observe = [this](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &screenObserver_, [this] { followScreens(); });
    QObject::connect(screen, &QScreen::availableGeometryChanged, &screenObserver_, [this] { followScreens(); });
  };
  for (QScreen* screen : QGuiApplication::screens()) observe(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &screenObserver_, [this, observe](QScreen* screen) {
    observe(screen);
    followScreens();
  });
  availableGeometryChanges_ = services_.windowSystem->availableGeometryChanged.connect([this] { followScreens(); });
  compositingChanges_ = services_.windowSystem->compositingChanged.connect([this] { followCompositing(); });
  followCaptureSigns();
  // Posted: at the signal the screen is still among the screens.
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &screenObserver_, [this] {
    services_.executor->post([self = lifetime_.weak(this)] {
      if (self) self->followScreens();
    });
  });
}

CapturePromptPanelController::~CapturePromptPanelController() {
  cancelOpening();
  if (recessEnd_) services_.executor->cancelDelay(*recessEnd_);
  if (tellingMore_) services_.executor->cancelDelay(*tellingMore_);
}

void CapturePromptPanelController::present(const ScreenshotItem& item, AppModel& model) {
  model_ = &model;
  if (!panel_) makePanel(model);
  if (!modelChanges_) {
    modelChanges_ = model.changed.connect([this](const ModelChange& change) {
      if (change.field == ModelField::promptQueue) noteArrivals();
      scheduleUpdate();
    });
  }
  if (!ticks_) ticks_ = model.popupAutoSaveScheduler().ticked.connect([this] { followCountdown(); });
  noteArrivals();
  if (isAway_) return comeBackWhenOver();
  if (panel_->isVisible()) {
    // The screen is not chosen again: a popup that goes on to the next screenshot stays where it is.
    scheduleUpdate();
    return;
  }
  if (opening_) return;
  services_.windowSystem->lookForRoom();
  screenFrame_ = PanelPlacement::chooseScreen(services_.captureRect(item.url), *services_.screens);
  opening_ = services_.executor->startDelay(kLongestWaitForSize, [this](bool elapsed) {
    if (elapsed) open();
  });
  if (*model.settings().showPopupThumbnail) previewSizes_.size(item);
  openUnlessSizeIsSought();
}

/// The first card of a run takes as long to make as the file has to hold still, and a reader as long to start. If the
/// file is no screenshot after all, its thumbnail ages out of the cache.
void CapturePromptPanelController::expect(const FileURL& url, AppModel& model) {
  if (!panel_) makePanel(model);
  if (panel_->isVisible() || !*model.settings().showPopupThumbnail) return;
  const int pixels = qRound(kPreviewWidth * panel_->devicePixelRatioF());
  services_.thumbnails->load(url, pixels).detach();
}

void CapturePromptPanelController::openUnlessSizeIsSought() {
  const ScreenshotItem* head = model_->promptedItem();
  if (!head || !previewSizes_.isSought(*head)) open();
}

void CapturePromptPanelController::open() {
  cancelOpening();
  isAway_ = true;
  comeBackWhenOver();
}

void CapturePromptPanelController::cancelOpening() {
  if (opening_) services_.executor->cancelDelay(*std::exchange(opening_, std::nullopt));
}

void CapturePromptPanelController::makePanel(AppModel& model) {
  const CapturePromptView::Services services{&model, services_.executor, services_.thumbnails, services_.sharing};
  view_ = new CapturePromptView(services, nullptr);
  view_->onKeyboardWanted = [this] { takeKeyboard(); };
  view_->onExtraHeightChanged = [this] { scheduleUpdate(); };
  view_->onMore = [this] {
    wholeDescriptionOf_ = content_->item.id;
    scheduleUpdate();
  };
  view_->onFontChanged = [this] { measureAnew(); };
  measuringView_ = std::make_unique<CapturePromptView>(services, nullptr);
  panel_ = std::make_unique<CaptureDecisionPanel>(view_, view_->footer());
  panel_->onNoteClicked = [this] { openNote(); };
  panel_->onCloseRequested = [this] { isNote_ ? openNote() : view_->closePrompt(); };
  panel_->onDeactivated = [this] {
    // A question of the card's gives the keyboard back by itself.
    if (isAsking()) return;
    previousWindow_ = 0;
    // The person has gone to another window: a click on a button must leave the keyboard there.
    services_.windowSystem->setAcceptsKeyboard(*panel_->windowHandle(), false);
  };
  panel_->winId();
}

void CapturePromptPanelController::showPanel() {
  QWindow& window = *panel_->windowHandle();
  services_.windowSystem->setAcceptsKeyboard(window, false);
  followCompositing();
  services_.windowSystem->prepare(window);
  const QRect frame = panel_->geometry();
  panel_->show();
  panel_->setGeometry(frame);  // the window manager may have forgotten it since the last time
  panel_->raise();
  services_.windowSystem->finish(window);
  if (!isNote_) wasCardSeen_ = true;
}

void CapturePromptPanelController::followCompositing() {
  if (!panel_) return;
  panel_->setCompositing(services_.windowSystem->isCompositing());
  services_.windowSystem->setClickableArea(*panel_->windowHandle(), panel_->cardRect());
}

void CapturePromptPanelController::scheduleUpdate() {
  if (isUpdateScheduled_) return;
  isUpdateScheduled_ = true;
  services_.executor->post([self = lifetime_.weak(this)] {
    if (!self) return;
    // Cleared first: a change made during the update asks for one more.
    self->isUpdateScheduled_ = false;
    if (self->panel_ && self->panel_->isVisible()) self->applyUpdate();
  });
}

void CapturePromptPanelController::applyUpdate() {
  if (isApplyingUpdate_ || !panel_ || !model_) return;
  auto next = makeContent();
  if (!next || (onlyMoreWait(*next) && isTellingLater())) return;
  isApplyingUpdate_ = true;
  ++updateCount_;
  const int height =
      isNote_ ? CaptureDecisionPanel::kNoteHeight + 2 * kMargin : measuredHeight(*next) + view_->extraHeight();
  auto visible = screenFrame_;
  if (!visible) visible = PanelPlacement::followScreen(std::nullopt, *services_.screens);
  // Without any screen the window stays as it is, and what has no room in it scrolls.
  const bool isFixed = !visible;
  if (isFixed) visible = QRectF(panel_->geometry().adjusted(kMargin, kMargin, -kMargin, -kMargin));
  const int card = height - 2 * kMargin;
  auto placement = PanelPlacement::place(card, *visible);
  // On a low screen the picture gives way first.
  if (placement.scrolls && next->showThumbnail && !isNote_) {
    const int excess = static_cast<int>(std::ceil(card - placement.card.height()));
    const int reduction = std::min(excess, next->thumbnailHeight - kLeastThumbnailHeight);
    next->thumbnailHeight -= reduction;
    placement = PanelPlacement::place(card - reduction, *visible);
  }
  next->scrolls = placement.scrolls;
  if (next != content_) {
    ++viewChangeCount_;
    content_ = std::move(next);
    view_->show(*content_);
    panel_->setScrolls(content_->scrolls);
  }
  panel_->setNote(isNote_ ? static_cast<int>(model_->prompts().queue->size()) : 0);
  if (!isFixed) setFrame(LivePanelScreens::toQt(placement.window));
  followCountdown();
  isApplyingUpdate_ = false;
}

/// Whether nothing else is new.
bool CapturePromptPanelController::onlyMoreWait(CapturePromptContent next) const {
  if (!content_ || isNote_ || next.queuedCount <= content_->queuedCount) return false;
  next.queuedCount = content_->queuedCount;
  next.scrolls = content_->scrolls;
  return next == *content_;
}

/// Of a few that come behind the card it tells at once, of many ten times a second: each number is a layout of the
/// card.
bool CapturePromptPanelController::isTellingLater() {
  static constexpr Duration kPause = std::chrono::milliseconds(100);
  constexpr int kMostAtOnce = 8;
  if (tellingMore_) return true;
  const Instant now = services_.executor->instant();
  const Duration wait = tellingTime_ - now - (kMostAtOnce - 1) * kPause;
  tellingTime_ = std::max(tellingTime_, now) + kPause;
  if (wait <= Duration::zero()) return false;
  tellingMore_ = services_.executor->startDelay(wait, [this](bool elapsed) {
    tellingMore_.reset();
    if (!elapsed) return;
    // It has had its wait.
    tellingTime_ -= kPause;
    scheduleUpdate();
  });
  return true;
}

void CapturePromptPanelController::followCountdown() {
  // A note is not looked at.
  const auto remaining =
      content_ && !isNote_ ? model_->popupAutoSaveScheduler().remaining(content_->item.id) : std::nullopt;
  const int all = *model_->settings().popupAutoSaveSeconds;
  panel_->showRemaining(remaining ? std::optional(*remaining / all) : std::nullopt);
}

/// Both frames are in whole points, so that a difference of half a point is none.
void CapturePromptPanelController::setFrame(const QRect& frame) {
  if (frame != panel_->geometry()) panel_->setFrame(frame);
  if (const QRect card = panel_->cardRect(); card != clickable_) {
    clickable_ = card;
    services_.windowSystem->setClickableArea(*panel_->windowHandle(), card);
  }
}

std::optional<CapturePromptContent> CapturePromptPanelController::makeContent() {
  // The next one's size is looked for ahead, so that its card comes up at the right height.
  const auto& queue = *model_->prompts().queue;
  const ScreenshotItem* following = queue.size() > 1 ? model_->items().find(queue[1]) : nullptr;
  if (following) previewSizes_.size(*following);
  auto content = CapturePromptContent::make(*model_, [this](const auto& item) { return previewSizes_.size(item); });
  if (content) content->showsWholeDescription = wholeDescriptionOf_ == content->item.id;
  return content;
}

/// A layout of the whole card is what must not happen at every change of the model.
int CapturePromptPanelController::measuredHeight(CapturePromptContent content) {
  content.reportsEdits = false;
  const auto known = std::find_if(measuredHeights_.begin(), measuredHeights_.end(),
                                  [&](const MeasuredHeight& one) { return one.content == content; });
  if (known != measuredHeights_.end()) {
    measuredHeights_.splice(measuredHeights_.begin(), measuredHeights_, known);
    return known->height;
  }
  ++measurementCount_;
  measuringView_->show(content);
  const int height = measuringView_->naturalHeight();
  measuringView_->clear();
  measuredHeights_.push_front({std::move(content), height});
  if (measuredHeights_.size() > kMostMeasuredHeights) measuredHeights_.pop_back();
  return height;
}

void CapturePromptPanelController::measureAnew() {
  measuredHeights_.clear();
  scheduleUpdate();
}

void CapturePromptPanelController::hide() {
  modelChanges_.reset();
  ticks_.reset();
  cancelOpening();
  queueLength_ = 0;
  isNote_ = false;
  const bool wasAway = std::exchange(isAway_, false);
  wasCardSeen_ = false;
  if (!panel_ || (!panel_->isVisible() && !wasAway)) return;
  const bool hadKeyboard = panel_->isActiveWindow();
  const quintptr previous = std::exchange(previousWindow_, 0);
  panel_->leave();
  services_.executor->post([self = lifetime_.weak(this)] {
    if (!self || self->panel_->isVisible() || self->isAway_) return;
    self->content_.reset();
    self->measuredHeights_.clear();
    self->view_->clear();
  });
  // A popup that never had the keyboard has none to give back.
  if (hadKeyboard) giveKeyboardBack(previous);
}

void CapturePromptPanelController::giveKeyboardBack(quintptr previous) {
  if (previous == 0) return;
  services_.executor->post([self = lifetime_.weak(this), previous] {
    // The window manager may have given it back by itself.
    if (self && self->services_.windowSystem->activeWindow() != previous) {
      self->services_.windowSystem->activate(previous);
    }
  });
}

void CapturePromptPanelController::focusForReview() {
  if (opening_) open();
  if (isAway_) comeBack();
  if (isNote_) openNote();
  if (panel_ && panel_->isVisible()) takeKeyboard();
}

void CapturePromptPanelController::takeKeyboard() {
  if (panel_->isActiveWindow()) return;
  QWindow& window = *panel_->windowHandle();
  const quintptr active = services_.windowSystem->activeWindow();
  const bool isOurs = QGuiApplication::focusWindow() != nullptr;
  previousWindow_ = isOurs ? 0 : active;
  services_.windowSystem->setAcceptsKeyboard(window, true);
  services_.windowSystem->activate(window.winId());
}

bool CapturePromptPanelController::isPointerEngaged() const {
  return isAway_ || isNote_ || isUsed();
}

/// A question of the card's, or one of nobody's, waits for its answer.
bool CapturePromptPanelController::isAsking() const {
  const QWidget* modal = QApplication::activeModalWidget();
  return modal && (!modal->parentWidget() || belongsTo(modal, *panel_));
}

bool CapturePromptPanelController::isUsed() const {
  if (!panel_ || !panel_->isVisible()) return false;
  // A menu of the card may reach beyond it.
  if (panel_->isActiveWindow() || belongsTo(QApplication::activePopupWidget(), *panel_)) return true;
  const QRect card = panel_->cardRect().translated(panel_->geometry().topLeft());
  return card.contains(LivePanelScreens::toQt(QRectF(services_.screens->mouseLocation(), QSizeF(0, 0))).topLeft());
}

void CapturePromptPanelController::followScreens() {
  if (!panel_ || !panel_->isVisible()) return;
  screenFrame_ = PanelPlacement::followScreen(screenFrame_, *services_.screens);
  scheduleUpdate();
}

}  // namespace quillmere
