#include "popup/CaptureDecisionPanel.h"

#include <QtCore/QEvent>
#include <QtGui/QAccessible>
#include <QtGui/QCloseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include "controls/ActionButton.h"
#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/CardShape.h"
#include "popup/CountdownLine.h"
#include "popup/PanelPlacement.h"

namespace quillmere {
namespace {

constexpr int kMargin = static_cast<int>(PanelPlacement::kMargin);
constexpr int kCardWidth = static_cast<int>(PanelPlacement::kCardWidth);
static_assert(CardShadow::kReach <= kMargin);

/// Between the card's upper edge and contents that scroll: these would else run over the edge and its corners.
constexpr int kScrollInset = 2;
constexpr int kScrollBarWidth = 6;
constexpr int kScrollBarInset = 5;
/// Between a note and its edge.
constexpr int kNoteInset = 8;
/// From the card's lower edge.
constexpr int kCountdownInset = 5;

/// A frameless window is no dialog to Qt.
QAccessibleInterface* dialogInterface(const QString&, QObject* object) {
  auto* panel = dynamic_cast<CaptureDecisionPanel*>(object);
  return panel ? new QAccessibleWidget(panel, QAccessible::Dialog) : nullptr;
}

}  // namespace

CaptureDecisionPanel::CaptureDecisionPanel(QWidget* contents, QWidget* footer)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                           Qt::NoDropShadowWindowHint),
      scroll_(new QScrollArea(this)),
      footer_(footer),
      note_(new ActionButton(ActionButton::Role::secondary, QStringLiteral("photo"), {}, this)),
      countdown_(new CountdownLine(this)),
      motion_(*this, [this] {
        layOut();
        update();
      }) {
  QAccessible::installFactory(&dialogInterface);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_QuitOnClose, false);
  // It is hardly ever the active window, to whose widgets help is usually limited.
  setAttribute(Qt::WA_AlwaysShowToolTips);
  setWindowTitle(localized("Screenshot Decision"));
  setAccessibleName(localized("Screenshot Decision"));
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->viewport()->setAutoFillBackground(false);
  scroll_->setWidgetResizable(true);
  scroll_->setWidget(contents);
  contents->setAutoFillBackground(false);
  if (footer_) footer_->setParent(this);
  note_->hide();
  note_->setFocusPolicy(Qt::NoFocus);
  note_->setToolTip(localized("Decide what happens to these screenshots"));
  connect(note_, &QPushButton::clicked, this, [this] {
    if (onNoteClicked) onNoteClicked();
  });
  countdown_->raise();
  makeScrollBar();
  setScrolls(false);
}

/// One that lies over the card's padding: the area's own would take room from the contents, which have none to give.
void CaptureDecisionPanel::makeScrollBar() {
  scrollBar_ = new QScrollBar(Qt::Vertical, this);
  QScrollBar* hidden = scroll_->verticalScrollBar();
  const auto follow = [this, hidden] {
    scrollBar_->setRange(hidden->minimum(), hidden->maximum());
    scrollBar_->setPageStep(scroll_->viewport()->height());  // theirs is told only after the range
    scrollBar_->setSingleStep(hidden->singleStep());
    scrollBar_->setValue(hidden->value());
  };
  connect(hidden, &QScrollBar::rangeChanged, this, follow);
  connect(hidden, &QScrollBar::valueChanged, this, follow);
  connect(scrollBar_, &QScrollBar::valueChanged, hidden, &QScrollBar::setValue);
  scrollBar_->setFocusPolicy(Qt::NoFocus);
}

void CaptureDecisionPanel::setScrolls(bool scrolls) {
  scrolls_ = scrolls;
  if (!scrolls) scroll_->verticalScrollBar()->setValue(0);
  scrollBar_->setVisible(scrolls);
  layOut();
}

void CaptureDecisionPanel::setNote(int count) {
  note_->setVisible(count > 0);
  scroll_->setVisible(count == 0);
  if (footer_) footer_->setVisible(count == 0);
  scrollBar_->setVisible(count == 0 && scrolls_);
  if (count > 0) note_->setText(localized("%lld screenshots", {count}));
  layOut();
  update();
}

void CaptureDecisionPanel::setCompositing(bool isCompositing) {
  if (std::exchange(isCompositing_, isCompositing) != isCompositing) update();
}

QRect CaptureDecisionPanel::cardRect() const {
  const QRect card(kMargin, kMargin, kCardWidth, std::max(1, height() - 2 * kMargin));
  // A note lies in the corner of the screen, as the card does.
  return note_->isHidden() ? card : card.adjusted(kCardWidth - note_->sizeHint().width() - 2 * kNoteInset, 0, 0, 0);
}

void CaptureDecisionPanel::setFrame(const QRect& frame) {
  ++frameChangeCount_;
  // Qt tells window managers that sizes grow by one point, which at a scale of 1.5 is two pixels: they would cut an odd
  // height. Counted from this size, it always fits.
  setBaseSize(frame.size());
  // Free while it changes: size and place are then one request to the window system, and nobody sees one without the
  // other.
  setMinimumSize(0, 0);
  setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  setGeometry(frame);
  setFixedSize(frame.size());
}

bool CaptureDecisionPanel::moves() const {
  return isCompositing_ && !isMotionReduced(*this);
}

void CaptureDecisionPanel::showEvent(QShowEvent*) {
  moves() ? motion_.begin() : motion_.end();
}

void CaptureDecisionPanel::leave() {
  motion_.end();
  if (moves() && isVisible()) CardMotion::fadeAway(*this);
  hide();
}

void CaptureDecisionPanel::vanish() {
  motion_.end();
  CardMotion::dropPicture(*this);
  if (!isVisible()) return;
  setWindowOpacity(0);
  hide();
}

void CaptureDecisionPanel::showRemaining(std::optional<double> remaining) {
  countdown_->show(remaining);
}

void CaptureDecisionPanel::layOut() {
  const QRect card = cardRect().translated(0, motion_.offset());
  const int inset = scrolls_ ? kScrollInset : 0;
  if (!note_->isHidden()) note_->setGeometry(card.adjusted(kNoteInset, kNoteInset, -kNoteInset, -kNoteInset));
  QRect above = card.adjusted(0, inset, 0, -inset);
  if (footer_) {
    const int height =
        footer_->hasHeightForWidth() ? footer_->heightForWidth(card.width()) : footer_->sizeHint().height();
    above = card.adjusted(0, inset, 0, -height);
    footer_->setGeometry(card.x(), above.bottom() + 1, card.width(), height);
  }
  scroll_->setGeometry(above);
  const int corner = static_cast<int>(CardShape::kCornerRadius);
  const int end = footer_ ? 0 : corner;
  const int reach = static_cast<int>(CardShape::kCornerReach);
  countdown_->setGeometry(card.x() + reach, card.bottom() + 1 - kCountdownInset - CountdownLine::kThickness,
                          card.width() - 2 * reach, CountdownLine::kThickness);
  scrollBar_->setGeometry(QRect(card.right() + 1 - kScrollBarInset - kScrollBarWidth, card.top() + corner,
                                kScrollBarWidth, above.bottom() + 1 - card.top() - corner - end));
}

void CaptureDecisionPanel::resizeEvent(QResizeEvent*) {
  layOut();
}

void CaptureDecisionPanel::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (onCloseRequested) onCloseRequested();
}

bool CaptureDecisionPanel::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate && onDeactivated) onDeactivated();
  if (event->type() == QEvent::LayoutRequest) layOut();
  return QWidget::event(event);
}

void CaptureDecisionPanel::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect card = cardRect().translated(0, motion_.offset());
  const QPainterPath path = CardShape::path(card);
  const QColor edge = isCompositing_ || theme.isHighContrast ? theme.hairline : theme.fieldBorder;
  // Without a compositor the window system cuts the window to the card, and with it the shadow.
  shadow_.paint(painter, card);
  // It cuts at whole pixels, and what of these lies beyond the card would be black.
  if (!isCompositing_) painter.strokePath(path, QPen(theme.fieldBorder, 2));
  painter.fillPath(path, theme.card);
  painter.setPen(QPen(edge, 1));
  painter.drawPath(CardShape::path(QRectF(card).adjusted(0.5, 0.5, -0.5, -0.5)));
}

}  // namespace quillmere
