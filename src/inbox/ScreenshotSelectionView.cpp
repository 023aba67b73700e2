#include "inbox/ScreenshotSelectionView.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleButton.h"
#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"
#include "inbox/CommandButton.h"
#include "inbox/SelectionSummary.h"
#include "inbox/SelectionTemporaryMenu.h"
#include "inbox/SymbolRow.h"
#include "inbox/TextExtractionProgress.h"

namespace quillmere {
namespace {

using Command = ScreenshotCommand;

constexpr int kSymbol = 48;
constexpr int kPadding = 20;
constexpr int kLines = 4;

QEvent::Type countingEvent() {
  static const int type = QEvent::registerEventType();
  return static_cast<QEvent::Type>(type);
}

}  // namespace

ScreenshotSelectionView::ScreenshotSelectionView(AppModel& model, InboxPresentation& presentation, QWidget* parent)
    : QScrollArea(parent), model_(model), presentation_(presentation) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  auto* page = new QWidget;
  heading_ = new ThemedLabel(Ink::text, page);
  heading_->setTextSize(1.35, QFont::DemiBold);
  heading_->setAlignment(Qt::AlignCenter);
  heading_->setWordWrap(true);
  setAccessibleRole(*heading_, QAccessible::Heading);
  auto* summary = new QVBoxLayout;
  summary->setSpacing(6);
  for (int i = 0; i < kLines; ++i) {
    lines_.push_back(new SymbolRow(Ink::secondary, SymbolRow::Wrapping::none, page));
    summary->addWidget(lines_.back());
  }
  auto* inTheMiddle = new QHBoxLayout;
  inTheMiddle->addStretch();
  inTheMiddle->addLayout(summary);
  inTheMiddle->addStretch();
  progress_ = new TextExtractionProgress(page);

  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(12);
  column->addStretch();
  column->addWidget(new SymbolLabel(kSymbol, Ink::secondary, page, QStringLiteral("square.on.square")), 0,
                    Qt::AlignHCenter);
  column->addWidget(heading_);
  column->addLayout(inTheMiddle);
  column->addWidget(progress_);
  column->addSpacing(8);
  column->addWidget(makeButtons(page));
  column->addStretch();
  setWidget(page);
  changes_ = presentation.changed.connect([this](const InboxChange&) { update(); });
}

QWidget* ScreenshotSelectionView::makeButtons(QWidget* page) {
  auto* pane = new QWidget(page);
  auto* row = new WrappingRow(8, Qt::AlignHCenter);
  keep_ = makeButton(Command::keep, pane);
  temporary_ = makeButton(Command::markTemporary, pane);
  trash_ = makeButton(Command::moveToTrash, pane);
  for (ActionButton* button : {keep_, temporary_, trash_}) row->addWidget(button);
  auto* durations = new SelectionTemporaryMenu(temporary_);
  durations->action = [this](TemporaryDuration duration) {
    ScreenshotActionsMenu::ofSelection(presentation_).markTemporary(duration);
  };
  temporary_->setMenu(durations);
  setAccessibleMenu(*temporary_);
  pane->setLayout(row);
  return pane;
}

ActionButton* ScreenshotSelectionView::makeButton(Command command, QWidget* parent) {
  const bool isTrash = command == Command::moveToTrash;
  const auto role = isTrash ? ActionButton::Role::destructive : ActionButton::Role::secondary;
  auto* button = new ActionButton(role, {}, {}, parent);
  connect(button, &QPushButton::clicked, this,
          [this, command] { ScreenshotActionsMenu::ofSelection(presentation_).perform(command); });
  return button;
}

void ScreenshotSelectionView::update() {
  if (std::exchange(isCountDue_, true)) return;
  // Handled before the next drawing, and after all that changes in this turn of the loop.
  QCoreApplication::postEvent(this, new QEvent(countingEvent()));
}

bool ScreenshotSelectionView::event(QEvent* event) {
  if (event->type() != countingEvent()) return QScrollArea::event(event);
  isCountDue_ = false;
  count();
  return true;
}

void ScreenshotSelectionView::count() {
  // One that is alone is shown by itself; the next change of the selection counts again.
  const auto summary = SelectionSummary::of(*model_.selectedItemIDs, model_.items(), *model_.unavailableItemIDs);
  heading_->setText(localized("%lld Screenshots Selected", {summary.total()}));
  const auto lines = summary.lines();
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (i < lines.size()) {
      lines_[i]->show(lines[i].symbol, lines[i].text);
    } else {
      lines_[i]->hide();
    }
  }
  progress_->show(*presentation_.textExtraction);
  showButtons();
}

void ScreenshotSelectionView::showButtons() {
  const auto menu = ScreenshotActionsMenu::ofSelection(presentation_);
  showCommand(*keep_, menu.action(Command::keep));
  showCommand(*temporary_, menu.action(Command::markTemporary));
  showCommand(*trash_, menu.action(Command::moveToTrash));
  temporary_->setToolTip(localized("Keep these screenshots for a set time, then move them to Trash"));
  trash_->setToolTip(localized("Move these screenshots to Trash"));
}

}  // namespace quillmere
