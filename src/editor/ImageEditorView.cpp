#include "editor/ImageEditorView.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/ThemedLabel.h"
#include "controls/WorkIndicator.h"
#include "controls/WrappingRow.h"
#include "editor/CropBoundsFields.h"
#include "editor/CropCanvas.h"
#include "editor/CropEditorActions.h"
#include "editor/CropEditorHeading.h"
#include "editor/CropEditorStatus.h"
#include "editor/DetectedContentRow.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// Of the window's size.
constexpr double kShare = 0.92;
constexpr QSize kShadow{2 * PopupSurface::kReach, 2 * PopupSurface::kReach};
constexpr QSize kLeastCanvas{240, 120};
constexpr int kGroupGap = 20;

QString titleOf(bool detectWindow) {
  return detectWindow ? localized("Extract Window") : localized("Crop");
}

bool isReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

ImageEditorView::ImageEditorView(AppModel& model, Executor& executor, ScreenshotItem item, bool detectWindow,
                                 QWidget* window)
    : CardDialog(titleOf(detectWindow), window),
      editor_(model, executor, std::move(item), detectWindow),
      heading_(new CropEditorHeading(titleOf(detectWindow), editor_.item().url.displayName(), this)),
      stage_(new QStackedWidget(this)),
      canvas_(new CropCanvas(executor, editor_.history(), stage_)),
      waiting_(makeWaiting()),
      note_(new ThemedLabel(Ink::secondary, this)),
      controls_(makeControls()),
      status_(new CropEditorStatus(this)),
      question_(editor_.item().url.displayName(), this) {
  layOut();
  connectParts();
  connectEditor();
  addKeys();
  if (window) window->installEventFilter(this);
  editor_.open();
  fitToWindow();
}

ImageEditorView::~ImageEditorView() {
  editor_.onChanged = nullptr;
  editor_.onDone = nullptr;
  // They tell of themselves while they go, and the editor goes before them otherwise.
  qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

// --- The parts, in the order in which the eye and the Tab key pass them ---

QWidget* ImageEditorView::makeWaiting() {
  auto* page = new QWidget(stage_);
  auto* row = new QHBoxLayout(page);
  waitingRing_ = new WorkIndicator(page);
  waitingText_ = new ThemedLabel(Ink::secondary, page);
  waitingText_->setAlignment(Qt::AlignCenter);
  row->setSpacing(10);
  row->addStretch();
  row->addWidget(waitingRing_);
  row->addWidget(waitingText_);
  row->addStretch();
  return page;
}

QWidget* ImageEditorView::makeControls() {
  auto* pane = new QWidget(this);
  detected_ = new DetectedContentRow(pane);
  bounds_ = new CropBoundsFields(pane);
  auto* row = new WrappingRow(kGroupGap);
  row->setLineSpacing(8);
  row->addWidget(detected_);
  row->addWidget(bounds_);
  pane->setLayout(row);
  return pane;
}

QWidget* ImageEditorView::makeActions() {
  auto* pane = new QWidget(this);
  alternatives_ = new CropEditorAlternateActions(pane);
  confirmation_ = new CropEditorConfirmActions(pane);
  auto* row = new WrappingRow(8, Qt::AlignJustify);
  row->addWidget(alternatives_);
  row->addWidget(confirmation_);
  pane->setLayout(row);
  return pane;
}

void ImageEditorView::layOut() {
  stage_->addWidget(canvas_);
  stage_->addWidget(waiting_);
  stage_->setMinimumSize(kLeastCanvas);
  note_->setWordWrap(true);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargins);
  column->setSpacing(12);
  column->addWidget(heading_);
  column->addWidget(stage_, 1);
  column->addWidget(note_);
  column->addWidget(controls_);
  column->addWidget(status_);
  column->addWidget(makeActions());
}

void ImageEditorView::connectParts() {
  const auto change = [this](const std::function<void(CropSelection&)>& something) {
    canvas_->endStep();
    editor_.change(something);
  };
  heading_->onUndo = [this] { undo(); };
  heading_->onRedo = [this] { redo(); };
  heading_->onFit = [this] { canvas_->fit(); };
  heading_->onRealSize = [this] { canvas_->showRealSize(); };
  canvas_->onChanged = [this] { editor_.selectionChanged(); };
  detected_->onPick = [change](const UUID& id) { change([&](CropSelection& selection) { selection.pick(id); }); };
  detected_->onIncludeShadow = [this, change](bool includes) {
    change([&](CropSelection& selection) { selection.setIncludesShadow(includes); });
    detected_->show(editor_.selection());
  };
  bounds_->onEdit = [this](const QRect& bounds) { edit(bounds); };
  bounds_->onHeldChanged = [this] { canvas_->endStep(); };
  bounds_->onSelectWholeImage = [change] { change([](CropSelection& selection) { selection.selectWholeImage(); }); };
  bounds_->onProblemChanged = [this] {
    if (!bounds_->problem().isEmpty()) editor_.announce(bounds_->problem());
    showStatus();
  };
  alternatives_->onKeep = [this] { editor_.keep(); };
  alternatives_->onCopy = [this] { act(&ImageEditor::copy); };
  confirmation_->onCancel = [this] { reject(); };
  confirmation_->onReplace = [this] { act(&ImageEditor::askToReplace); };
  confirmation_->onSave = [this] { act(&ImageEditor::saveAsNew); };
  question_.onAnswer = [this](bool isConfirmed) { editor_.answerReplace(isConfirmed); };
}

void ImageEditorView::connectEditor() {
  editor_.onChanged = [this] { refresh(); };
  editor_.onDone = [this](std::optional<UUID> saved) {
    if (saved && onSaved) onSaved(*saved);
    accept();
  };
}

void ImageEditorView::addKeys() {
  // A field that has the keyboard takes these for its own text.
  const auto add = [this](QWidget* widget, const QKeySequence& keys, Qt::ShortcutContext context, auto action) {
    auto* shortcut = new QShortcut(keys, widget);
    shortcut->setContext(context);
    connect(shortcut, &QShortcut::activated, this, action);
  };
  add(this, Qt::CTRL | Qt::Key_Z, Qt::WindowShortcut, [this] { undo(); });
  add(this, Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::WindowShortcut, [this] { redo(); });
  add(canvas_, Qt::CTRL | Qt::Key_C, Qt::WidgetShortcut, [this] { editor_.copy(); });
}

/// Return presses the button that has the keyboard, whatever the desktop has it do, and saves elsewhere. While an
/// action is under way it does nothing: pressed twice, it must not cancel what it began.
void ImageEditorView::keyPressEvent(QKeyEvent* event) {
  if (!isReturn(*event)) return CardDialog::keyPressEvent(event);
  event->accept();
  if (editor_.isWorking() || event->isAutoRepeat()) return;
  if (auto* button = qobject_cast<QPushButton*>(focusWidget())) return button->click();
  act(&ImageEditor::saveAsNew);
}

/// A click does not take the keyboard out of a field, and what is typed there is not yet what is selected.
void ImageEditorView::act(void (ImageEditor::*action)()) {
  if (bounds_->takeTyped()) (editor_.*action)();
}

// --- What changes the selection beside the canvas, which may have a step open ---

void ImageEditorView::undo() {
  canvas_->endStep();
  editor_.undo();
}

void ImageEditorView::redo() {
  canvas_->endStep();
  editor_.redo();
}

/// All that a held key does is one step, unless that has been ended meanwhile: then another one begins.
void ImageEditorView::edit(const QRect& bounds) {
  const bool goesOn = bounds_->isHeld() && editor_.history().isInStep();
  if (!goesOn) canvas_->endStep();
  if (bounds_->isHeld() && !goesOn) editor_.history().begin();
  editor_.change(
      [&](CropSelection& selection) { selection.setBounds(bounds.x(), bounds.y(), bounds.width(), bounds.height()); });
}

// --- What it shows ---

void ImageEditorView::refresh() {
  const CropSelection& selection = editor_.selection();
  const bool canSelect = editor_.canSelect();
  moveKeyboard();
  showPicture();
  canvas_->setLocked(!canSelect);
  canvas_->followHistory();
  heading_->setCanUndo(canSelect && editor_.history().canUndo(), canSelect && editor_.history().canRedo());
  heading_->setCanZoom(editor_.hasPicture());
  note_->setText(editor_.hasPicture() ? CropNotes::detectionNote(editor_.situation()) : QString());
  detected_->show(selection);
  bounds_->show(selection);
  controls_->setEnabled(canSelect);
  alternatives_->setShowsKeep(editor_.situation().offersKeep);
  alternatives_->setCanKeep(editor_.canKeep());
  alternatives_->setCanCopy(editor_.canSave());
  confirmation_->setCanSave(editor_.canSave());
  confirmation_->setCanReplace(editor_.canReplace(),
                               CropNotes::replaceObstacle(editor_.situation()).value_or(QString()));
  confirmation_->setWorking(editor_.isWorking());
  showStatus();
  question_.setAsked(editor_.isConfirmingReplace());
}

void ImageEditorView::showPicture() {
  if (editor_.hasPicture()) {
    if (!canvas_->hasPicture()) canvas_->setPicture(editor_.shownPicture(), editor_.shownPicture().size());
    stage_->setCurrentWidget(canvas_);
    return;
  }
  // That it can't be opened stands where the picture would be.
  waitingRing_->setVisible(editor_.isLoading());
  const bool hasFailed = editor_.error().has_value();
  waitingText_->setWordWrap(hasFailed);
  waitingText_->setMinimumWidth(hasFailed ? 2 * kLeastCanvas.width() : 0);
  waitingText_->setText(hasFailed ? *editor_.error() : editor_.message().value_or(QString()));
  stage_->setCurrentWidget(waiting_);
}

void ImageEditorView::showStatus() {
  CropEditorStatus::Content content;
  if (editor_.hasPicture()) {
    QStringList errors;
    if (!bounds_->problem().isEmpty()) errors << bounds_->problem();
    if (editor_.error()) errors << *editor_.error();
    content.error = errors.join(QLatin1Char('\n'));
    content.message = editor_.message().value_or(QString());
    if (const auto note = CropNotes::shadowNote(editor_.selection())) content.notes << *note;
    if (const auto obstacle = CropNotes::replaceObstacle(editor_.situation())) content.notes << *obstacle;
  }
  status_->show(content);
}

/// What is dimmed loses the keyboard to whatever comes next, which could be Cancel.
void ImageEditorView::moveKeyboard() {
  if (isWorking_ == editor_.isWorking()) {
    // There was nothing else to be used while it was read.
    if (editor_.hasPicture() && !canvas_->hasPicture()) {
      stage_->setCurrentWidget(canvas_);
      canvas_->setFocus();
    }
    return;
  }
  isWorking_ = editor_.isWorking();
  if (isWorking_) {
    keyboardBefore_ = focusWidget();
    canvas_->setFocus();
    return;
  }
  // In a later turn: what had it is dimmed until the end of this one.
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (keyboardBefore_ && keyboardBefore_->isEnabled() && focusWidget() == canvas_) keyboardBefore_->setFocus();
      },
      Qt::QueuedConnection);
}

// --- Its size ---

void ImageEditorView::fitToWindow() {
  const QWidget* window = parentWidget() ? parentWidget()->window() : nullptr;
  if (!window || !layout()) return;
  const QSize available = window->screen()->availableSize();
  QSize size = (QSizeF(window->size()) * kShare).toSize() + kShadow;
  size = size.expandedTo(layout()->totalMinimumSize()).boundedTo(available);
  const int height =
      std::max(layout()->totalMinimumHeightForWidth(size.width()), layout()->totalMinimumSize().height());
  size.setHeight(std::min(std::max(size.height(), height), available.height()));
  if (size == this->size()) return;
  resize(size);
  if (!isVisible()) return;
  const QRect place(window->mapToGlobal(QPoint(0, 0)), window->size());
  move(place.center() - QRect(QPoint(0, 0), size).center());
}

bool ImageEditorView::event(QEvent* event) {
  const bool isTaken = CardDialog::event(event);
  // A text that came to it, or another font, may need more room.
  if (event->type() == QEvent::LayoutRequest) fitToWindow();
  return isTaken;
}

bool ImageEditorView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) fitToWindow();
  return CardDialog::eventFilter(watched, event);
}

void ImageEditorView::showEvent(QShowEvent* event) {
  CardDialog::showEvent(event);
  if (!editor_.hasPicture()) confirmation_->cancelButton()->setFocus();
}

void ImageEditorView::hideEvent(QHideEvent* event) {
  CardDialog::hideEvent(event);
  // Iconified, it goes on.
  if (event->spontaneous()) return;
  question_.setAsked(false);
  editor_.close();
}

}  // namespace quillmere
