#include "popup/CapturePromptPanelController.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QLayout>

#include "imaging/ImageFile.h"
#include "popup/LivePanelScreens.h"

namespace quillmere {
namespace {

constexpr size_t kMostPixelSizes = 32;

}  // namespace

CapturePromptPanelController::CapturePromptPanelController(Services services) : services_(std::move(services)) {
  const auto observe = [this](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &screenObserver_, [this] { followScreens(); });
    QObject::connect(screen, &QScreen::availableGeometryChanged, &screenObserver_, [this] { followScreens(); });
  };
  for (QScreen* screen : QGuiApplication::screens()) observe(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &screenObserver_, [this, observe](QScreen* screen) {
    observe(screen);
    followScreens();
  });
  // Posted: at the signal the screen is still among the screens.
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &screenObserver_, [this] {
    services_.executor->post([self = lifetime_.weak(this)] {
      if (self) self->followScreens();
    });
  });
}

CapturePromptPanelController::~CapturePromptPanelController() = default;

void CapturePromptPanelController::present(const ScreenshotItem& item, AppModel& model) {
  model_ = &model;
  if (!panel_) makePanel(model);
  if (!modelChanges_) modelChanges_ = model.changed.connect([this](const ModelChange&) { scheduleUpdate(); });
  if (panel_->isVisible()) {
    // The screen is not chosen again: a popup that goes on to the next screenshot stays where it is.
    scheduleUpdate();
    return;
  }
  screenFrame_ = PanelPlacement::chooseScreen(services_.captureRect(item.url), *services_.screens);
  applyUpdate();
  showPanel();
}

void CapturePromptPanelController::makePanel(AppModel& model) {
  view_ = new CapturePromptView(model, *services_.executor, *services_.thumbnails, nullptr);
  view_->onKeyboardWanted = [this] { takeKeyboard(); };
  view_->confirmDeletion = services_.confirmDeletion;
  panel_ = std::make_unique<CaptureDecisionPanel>(view_);
  panel_->onDeactivated = [this] {
    previousWindow_ = 0;
    // The person has gone elsewhere: a click on a button must leave the keyboard there.
    panel_->windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus, true);
  };
  panel_->winId();
}

void CapturePromptPanelController::showPanel() {
  QWindow& window = *panel_->windowHandle();
  window.setFlag(Qt::WindowDoesNotAcceptFocus, true);
  panel_->setCompositing(services_.windowSystem->isCompositing());
  services_.windowSystem->prepare(window);
  const QRect frame = panel_->geometry();
  panel_->show();
  panel_->setGeometry(frame);  // the window manager may have forgotten it since the last time
  panel_->raise();
  services_.windowSystem->finish(window);
  services_.windowSystem->setClickableArea(window, panel_->cardRect());
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
  auto next = CapturePromptContent::make(*model_, [this](const auto& item) { return thumbnailPixelSize(item); });
  if (!next) return;
  next->scrolls = content_ && content_->scrolls;
  if (next == content_) return;
  isApplyingUpdate_ = true;
  ++updateCount_;
  view_->show(*next);
  auto visible = screenFrame_;
  if (!visible) visible = PanelPlacement::followScreen(std::nullopt, *services_.screens);
  if (visible) {
    const auto placement = PanelPlacement::place(naturalHeight(), *visible);
    next->scrolls = placement.scrolls;
    panel_->setScrolls(placement.scrolls);
    const QRect frame = LivePanelScreens::toQt(placement.window);
    if (frame != panel_->geometry()) {
      panel_->setFrame(frame);
      if (panel_->isVisible()) services_.windowSystem->setClickableArea(*panel_->windowHandle(), panel_->cardRect());
    }
  }
  content_ = std::move(next);
  isApplyingUpdate_ = false;
}

qreal CapturePromptPanelController::naturalHeight() {
  view_->layout()->activate();
  const int width = static_cast<int>(PanelPlacement::kCardWidth);
  QLayout& layout = *view_->layout();
  return layout.hasHeightForWidth() ? layout.totalHeightForWidth(width) : layout.totalSizeHint().height();
}

std::optional<QSize> CapturePromptPanelController::thumbnailPixelSize(const ScreenshotItem& item) {
  const auto known = thumbnailPixelSizes_.find(item.url);
  // By identity too, so that a replaced file of the same name is measured afresh.
  if (known != thumbnailPixelSizes_.end() && known->second.first == item.fileIdentity) return known->second.second;
  if (services_.isDataless(item.url)) return std::nullopt;
  const auto size = ImageFile::pixelSize(item.url);
  if (!size) return std::nullopt;
  if (thumbnailPixelSizes_.size() > kMostPixelSizes) thumbnailPixelSizes_.clear();
  thumbnailPixelSizes_.insert_or_assign(item.url, std::pair(item.fileIdentity, *size));
  return size;
}

void CapturePromptPanelController::hide() {
  modelChanges_.reset();
  if (!panel_ || !panel_->isVisible()) return;
  const bool hadKeyboard = panel_->isActiveWindow();
  const quintptr previous = std::exchange(previousWindow_, 0);
  panel_->hide();
  services_.executor->post([self = lifetime_.weak(this)] {
    if (!self || self->panel_->isVisible()) return;
    self->content_.reset();
    self->view_->clear();
  });
  // A popup that never had the keyboard has none to give back.
  if (!hadKeyboard || previous == 0) return;
  services_.executor->post([self = lifetime_.weak(this), previous] {
    if (self) self->services_.windowSystem->activate(previous);
  });
}

void CapturePromptPanelController::focusForReview() {
  if (panel_ && panel_->isVisible()) takeKeyboard();
}

void CapturePromptPanelController::takeKeyboard() {
  if (panel_->isActiveWindow()) return;
  QWindow& window = *panel_->windowHandle();
  const quintptr active = services_.windowSystem->activeWindow();
  const bool isOurs = QGuiApplication::focusWindow() != nullptr;
  previousWindow_ = isOurs ? 0 : active;
  window.setFlag(Qt::WindowDoesNotAcceptFocus, false);
  services_.windowSystem->activate(window.winId());
}

bool CapturePromptPanelController::isPointerEngaged() const {
  if (!panel_ || !panel_->isVisible()) return false;
  if (panel_->isActiveWindow()) return true;
  const QRect card = panel_->cardRect().translated(panel_->geometry().topLeft());
  return card.contains(LivePanelScreens::toQt(QRectF(services_.screens->mouseLocation(), QSizeF(0, 0))).topLeft());
}

void CapturePromptPanelController::followScreens() {
  if (!panel_ || !panel_->isVisible()) return;
  screenFrame_ = PanelPlacement::followScreen(screenFrame_, *services_.screens);
  content_.reset();  // the placement has to be worked out anew
  scheduleUpdate();
}

}  // namespace quillmere
