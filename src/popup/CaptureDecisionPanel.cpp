#include "popup/CaptureDecisionPanel.h"

#include <QtCore/QEvent>
#include <QtGui/QBitmap>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QScrollArea>

#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/PanelPlacement.h"

namespace quillmere {
namespace {

constexpr int kMargin = static_cast<int>(PanelPlacement::kMargin);
constexpr int kCardWidth = static_cast<int>(PanelPlacement::kCardWidth);
constexpr qreal kCornerRadius = 22;
constexpr qreal kShadowOpacity = 0.3;
constexpr qreal kShadowOffset = 4;

/// Soft rings, from the outermost in, that add up to the shadow's opacity at the card's edge.
void paintShadow(QPainter& painter, const QRectF& card) {
  QPainterPath outside;
  outside.setFillRule(Qt::OddEvenFill);
  outside.addRect(card.adjusted(-kMargin, -kMargin, kMargin, kMargin));
  outside.addRoundedRect(card, kCornerRadius, kCornerRadius);
  painter.save();
  painter.setClipPath(outside);
  painter.setPen(Qt::NoPen);
  constexpr int kReach = kMargin - static_cast<int>(kShadowOffset);
  qreal total = 0;
  for (int distance = kReach; distance >= 0; --distance) {
    const qreal nearness = 1 - static_cast<qreal>(distance) / (kReach + 1);
    const qreal wanted = kShadowOpacity * nearness * nearness * nearness;
    const qreal layer = (wanted - total) / (1 - total);
    total = wanted;
    painter.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>(layer)));
    const QRectF ring = card.adjusted(-distance, -distance, distance, distance).translated(0, kShadowOffset);
    painter.drawRoundedRect(ring, kCornerRadius + distance, kCornerRadius + distance);
  }
  painter.restore();
}

}  // namespace

CaptureDecisionPanel::CaptureDecisionPanel(QWidget* card)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                           Qt::NoDropShadowWindowHint),
      scroll_(new QScrollArea(this)) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_QuitOnClose, false);
  setWindowTitle(localized("Screenshot Decision"));
  setAccessibleName(localized("Screenshot Decision"));
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->viewport()->setAutoFillBackground(false);
  scroll_->setWidgetResizable(true);
  scroll_->setWidget(card);
  card->setAutoFillBackground(false);
  setScrolls(false);
}

void CaptureDecisionPanel::setScrolls(bool scrolls) {
  scroll_->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

void CaptureDecisionPanel::setCompositing(bool isCompositing) {
  isCompositing_ = isCompositing;
  updateShape();
}

QRect CaptureDecisionPanel::cardRect() const {
  return QRect(kMargin, kMargin, kCardWidth, std::max(1, height() - 2 * kMargin));
}

void CaptureDecisionPanel::setFrame(const QRect& frame) {
  ++frameChangeCount_;
  setFixedSize(frame.size());
  setGeometry(frame);
}

void CaptureDecisionPanel::updateShape() {
  if (isCompositing_) {
    clearMask();
    return;
  }
  QBitmap shape(size());
  shape.clear();
  QPainter painter(&shape);
  painter.setBrush(Qt::color1);
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(cardRect(), kCornerRadius, kCornerRadius);
  painter.end();
  setMask(shape);
}

void CaptureDecisionPanel::resizeEvent(QResizeEvent*) {
  scroll_->setGeometry(cardRect());
  updateShape();
}

bool CaptureDecisionPanel::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate && onDeactivated) onDeactivated();
  return QWidget::event(event);
}

void CaptureDecisionPanel::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF card = cardRect();
  if (isCompositing_) {
    paintShadow(painter, card);
  } else {
    // Nothing shines through here: what the shape leaves of the corners has the card's colour.
    painter.fillRect(rect(), theme.card);
  }
  painter.setBrush(theme.card);
  painter.setPen(QPen(theme.hairline, 1));
  painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
}

}  // namespace quillmere
