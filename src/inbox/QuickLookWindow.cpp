#include "inbox/QuickLookWindow.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "controls/PictureCanvas.h"
#include "foundation/Interruptible.h"
#include "foundation/Localized.h"
#include "inbox/QuickLookFooter.h"

namespace quillmere {
namespace {

using Outcome = ThumbnailLoader::Outcome;

/// Where nothing tells how large the picture is.
constexpr QSize kUnknownSize(900, 600);
constexpr QSize kSmallest(320, 240);

/// A file that was renamed, or replaced by another, is the same screenshot still.
bool isSameScreenshot(const QuickLookWindow::Content& one, const QuickLookWindow::Content& other) {
  return one.url == other.url || (one.identity && other.identity && one.identity->isSameInode(*other.identity));
}

bool isSameFile(const QuickLookWindow::Content& one, const QuickLookWindow::Content& other) {
  return one.url == other.url && one.identity == other.identity && one.hasImageData == other.hasImageData;
}

}  // namespace

QuickLookWindow::QuickLookWindow(ThumbnailLoader& thumbnails, Executor& executor, QWidget* parent)
    : QWidget(parent, Qt::Window),
      thumbnails_(thumbnails),
      executor_(executor),
      canvas_(new PictureCanvas(executor, this)),
      footer_(new QuickLookFooter(this)) {
  canvas_->setAccessibleName(localized("Screenshot preview"));
  canvas_->setWheelZooms(true);
  canvas_->onZoomChanged = [this] { showFacts(); };
  footer_->onFit = [this] { canvas_->fit(); };
  footer_->onRealSize = [this] { canvas_->showRealSize(); };
  footer_->onOpenElsewhere = [this] {
    if (onOpenElsewhere) onOpenElsewhere();
  };
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(canvas_, 1);
  column->addWidget(footer_);
  // Their own size is the picture's matter, not the texts'.
  column->setSizeConstraint(QLayout::SetNoConstraint);
  setMinimumSize(kSmallest);
  canvas_->setFocus();
  addShortcuts();
  if (parent) parent->installEventFilter(this);
}

QuickLookWindow::~QuickLookWindow() {
  stopLoading();
}

/// Buttons would take the arrow keys for their own way from one to the next.
void QuickLookWindow::addShortcuts() {
  const auto add = [this](QKeyCombination key, const std::function<void()>& action) {
    auto* shortcut = new QShortcut(QKeySequence(key), this);
    connect(shortcut, &QShortcut::activated, this, action);
    return shortcut;
  };
  for (const QKeyCombination key : {QKeyCombination(Qt::Key_Escape), Qt::CTRL | Qt::Key_W, Qt::CTRL | Qt::Key_Y}) {
    add(key, [this] { close(); })->setAutoRepeat(false);
  }
  const auto step = [this](int by) {
    if (onStep) onStep(by);
  };
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right}) add(key, [step] { step(1); });
  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left}) add(key, [step] { step(-1); });
}

bool QuickLookWindow::eventFilter(QObject* watched, QEvent* event) {
  // A window system leaves it there alone.
  if (watched == parentWidget() && event->type() == QEvent::Hide && !event->spontaneous()) close();
  return QWidget::eventFilter(watched, event);
}

void QuickLookWindow::keyPressEvent(QKeyEvent* event) {
  // No shortcut: a button that has the keyboard is pressed by it.
  if (event->key() != Qt::Key_Space || event->modifiers() != Qt::NoModifier) return QWidget::keyPressEvent(event);
  if (!event->isAutoRepeat()) close();
}

void QuickLookWindow::show(const Content& content) {
  const bool isOpening = !content_;
  const bool isSame = content_ && isSameFile(*content_, content);
  content_ = content;
  if (isSame) {
    if (arranged_) arrange();
    return;
  }
  stopLoading();
  pixelSize_.reset();
  if (content.hasImageData) return load(isOpening ? Duration::zero() : kRest);
  arrange();
}

// --- What is read ---

void QuickLookWindow::load(Duration rest) {
  const auto self = lifetime_.weak(this);
  measuring_ = measure(self, content_->url);
  waiting_ = waitForSize(self);
  reading_ = readFully(self, content_->url, rest);
}

void QuickLookWindow::stopLoading() {
  for (const Task<>& task : {measuring_, waiting_, reading_}) task.cancel();
}

Task<> QuickLookWindow::measure(Weak<QuickLookWindow> self, FileURL url) {
  auto measuring = interruptible(self->thumbnails_.pixelSize(url));
  const auto size = co_await measuring;
  const bool isStopped = co_await isCancelled;
  if (!self || isStopped) co_return;
  self->pixelSize_ = size;
  self->waiting_.cancel();
  self->arrange();
}

Task<> QuickLookWindow::waitForSize(Weak<QuickLookWindow> self) {
  auto waiting = self->executor_.sleep(kLongestWait);
  const bool isOver = co_await waiting;
  if (self && isOver) self->arrange();
}

/// While a key is held for the next and the next, what is passed is not worth the work.
Task<> QuickLookWindow::readFully(Weak<QuickLookWindow> self, FileURL url, Duration rest) {
  if (rest > Duration::zero()) {
    auto resting = self->executor_.sleep(rest);
    const bool stayed = co_await resting;
    if (!self || !stayed) co_return;
  }
  auto reading = interruptible(self->thumbnails_.loadFull(url));
  const Outcome outcome = co_await reading;
  const bool isStopped = co_await isCancelled;
  if (self && !isStopped) self->take(outcome);
}

void QuickLookWindow::take(const Outcome& outcome) {
  waiting_.cancel();
  measuring_.cancel();
  const auto* picture = std::get_if<QImage>(&outcome);
  if (picture) pixelSize_ = picture->size();
  arrange();
  content_->preview = {};
  isSharp_ = picture != nullptr;
  if (picture) {
    canvas_->setPicture(*picture, picture->size());
  } else {
    const bool isElsewhere = std::holds_alternative<ThumbnailLoader::NotDownloaded>(outcome);
    canvas_->clear(isElsewhere ? MissingPicture::notDownloaded : MissingPicture::unreadable);
  }
  showFacts();
}

// --- What is shown ---

void QuickLookWindow::arrange() {
  const bool isSame = arranged_ && isSameScreenshot(*arranged_, *content_);
  const bool cameBack = arranged_ && !arranged_->hasImageData && content_->hasImageData;
  if (!content_->hasImageData) {
    canvas_->clear(MissingPicture::notDownloaded);
  } else if (!isSame || cameBack) {
    canvas_->clear();
    isSharp_ = false;
  }
  arranged_ = content_;
  setWindowTitle(content_->title);
  footer_->setName(content_->title);
  footer_->setOffersOpening(static_cast<bool>(onOpenElsewhere));
  place();
  showPreview();
  showFacts();
  if (!isVisible()) setVisible(true);
}

void QuickLookWindow::showPreview() {
  const QImage& preview = content_->preview;
  // Of a file that was replaced all pixels are there as they were: fewer would be a step back.
  if (preview.isNull() || isSharp_ || canvas_->missing()) return;
  canvas_->setPicture(preview, pixelSize_.value_or(preview.size()));
}

void QuickLookWindow::showFacts() {
  if (!arranged_) return;
  const auto missing = canvas_->missing();
  const bool isMissing = missing.has_value();
  // What is only estimated from the preview isn't told.
  const auto size = canvas_->hasPicture() ? pixelSize_ : std::nullopt;
  footer_->setPictureSize(isMissing ? std::nullopt : pixelSize_);
  footer_->setScale(size ? std::optional(canvas_->zoom().scale()) : std::nullopt);
  canvas_->setToolTip(isMissing ? adviceFor(*missing) : QString());
  const QString told = size ? localized("%@, %@ pixels", {arranged_->title, pictureSizeText(*size)}) : arranged_->title;
  canvas_->setAccessibleDescription(isMissing ? adviceFor(*missing) : told);
}

// --- Where it is ---

QuickLookRoom QuickLookWindow::room() const {
  const QScreen& on = *(isVisible() || !parentWidget() ? screen() : parentWidget()->screen());
  QMargins frame;
  if (isVisible()) {
    const QRect outer = frameGeometry();
    const QRect inner = geometry();
    frame = {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
             outer.bottom() - inner.bottom()};
  }
  return {on.availableGeometry(), on.devicePixelRatio(), footer_->sizeHint().height(), frame};
}

void QuickLookWindow::place() {
  const QuickLookRoom room = this->room();
  const bool isEstimated = !pixelSize_ && !content_->preview.isNull();
  const auto picture = isEstimated ? std::optional(content_->preview.size()) : pixelSize_;
  const QSize wanted = picture ? quickLookSize(*picture, room) : kUnknownSize;
  if (!isVisible()) {
    isSizedByPerson_ = false;
    sizes_.clear();
    centre_ = room.available.center();
  } else if (isSizedByPerson_ || !picture || wanted == size()) {
    return;
  } else if (geometry() != placed_) {
    centre_ = geometry().center();
  }
  placed_ = quickLookPlace(wanted, centre_, room);
  sizes_.push_back(placed_.size());
  setGeometry(placed_);
}

void QuickLookWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  // The window system may tell of a size that has been followed by another since.
  if (isVisible() && std::find(sizes_.begin(), sizes_.end(), size()) == sizes_.end()) isSizedByPerson_ = true;
}

void QuickLookWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  // It was put away, and comes back by itself.
  if (event->spontaneous()) return;
  stopLoading();
  content_.reset();
  arranged_.reset();
  pixelSize_.reset();
  isSharp_ = false;
  canvas_->clear();
  if (onClosed) onClosed();
}

}  // namespace quillmere
