#include "shell/AcknowledgmentsPopover.h"

#include <QtCore/QEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "controls/AccessibleRole.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kLetters = 64;
constexpr int kSpacing = 12;
/// Between the control and the card.
constexpr int kDistance = 6;
/// A list of fewer lines than these cannot be read.
constexpr int kFewestLines = 3;

ThemedLabel* wrapped(Ink ink, QWidget* parent, const QString& text) {
  auto* label = new ThemedLabel(ink, parent, text);
  label->setWordWrap(true);
  return label;
}

}  // namespace

AcknowledgmentsPopover::AcknowledgmentsPopover(const std::vector<LinkedLibrary>& libraries, QWidget* parent)
    : CardDialog(localized("Acknowledgments"), parent) {
  auto* title = new ThemedLabel(Ink::text, this, localized("Acknowledgments"));
  title->setTextSize(1.2, QFont::DemiBold);
  setAccessibleRole(*title, QAccessible::Heading);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargins);
  column->setSpacing(kSpacing);
  column->addWidget(title);
  column->addWidget(wrapped(Ink::text, this,
                            localized("Quillmere is built only with Apple frameworks. It includes no third-party code "
                                      "or fonts.")));
  list_ = new QScrollArea(this);  // after the texts above it, as they are read out
  list_->setWidgetResizable(true);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setAccessibleName(localized("Acknowledgments"));
  list_->setWidget(makeList(libraries));
  // The card shows through.
  list_->viewport()->setAutoFillBackground(false);
  list_->widget()->setAutoFillBackground(false);
  column->addWidget(list_, 1);
  auto* makers = wrapped(Ink::secondary, this,
                         localized("Quillmere is published by the Quillmere developers, who also drew its icon and "
                                   "symbols."));
  makers->setTextSize(0.92);
  column->addWidget(makers);
  list_->setFocus();
}

QWidget* AcknowledgmentsPopover::makeList(const std::vector<LinkedLibrary>& libraries) {
  auto* list = new QWidget(list_);
  auto* grid = new QGridLayout(list);
  grid->setContentsMargins(0, 0, 8, 0);
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(4);
  grid->setColumnStretch(1, 1);
  for (const LinkedLibrary& library : libraries) {
    const int row = grid->rowCount();
    grid->addWidget(new ThemedLabel(Ink::text, list, library.name), row, 0, Qt::AlignTop);
    grid->addWidget(wrapped(Ink::secondary, list, library.licence), row, 1);
  }
  return list;
}

void AcknowledgmentsPopover::openBeside(const QWidget& control) {
  // What came into it since it was made has no font yet to be measured by.
  for (auto* child : findChildren<QWidget*>()) child->ensurePolished();
  constexpr int kReach = PopupSurface::kReach;
  const QRect screen = control.screen()->availableGeometry();
  const QRect beside(control.mapToGlobal(QPoint()), control.size());
  const int above = beside.top() - screen.top() - kDistance;
  const int below = screen.bottom() - beside.bottom() - kDistance;
  const int room = std::max(above, below) + kReach;

  const QFontMetrics metrics(font());
  const int width =
      std::min(kLetters * metrics.averageCharWidth() + kMargins.left() + kMargins.right(), screen.width() + 2 * kReach);
  const int inside = width - kMargins.left() - kMargins.right();
  // Beside a scroll bar texts need more lines, for which then the bar would stay.
  const int besideBar = inside - list_->verticalScrollBar()->sizeHint().width();
  const int wanted = list_->widget()->layout()->totalHeightForWidth(besideBar);
  list_->setFixedHeight(kFewestLines * metrics.height());
  const int rest = layout()->totalHeightForWidth(width) - list_->height();
  list_->setFixedHeight(std::min(wanted, std::max(room - rest, kFewestLines * metrics.height())));
  list_->setFocusPolicy(Qt::StrongFocus);
  setFixedSize(width, rest + list_->height());

  const int left = std::clamp(beside.center().x() - width / 2, screen.left() - kReach,
                              std::max(screen.left() - kReach, screen.right() + kReach - width));
  const int top = below >= above ? beside.bottom() + kDistance - kReach : beside.top() - kDistance + kReach - height();
  move(left, top);
  show();
}

bool AcknowledgmentsPopover::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate && isVisible()) reject();
  return CardDialog::event(event);
}

}  // namespace quillmere
