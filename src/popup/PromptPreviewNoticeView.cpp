#include "popup/PromptPreviewNoticeView.h"

#include <QtGui/QPainter>

#include "controls/AccessibleRole.h"
#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr Duration kShown = std::chrono::seconds(2);
constexpr int kAppearing = 150;  // milliseconds
constexpr int kGoing = 300;
constexpr int kPadding = 14;
constexpr int kHeight = 30;

}  // namespace

PromptPreviewNoticeView::PromptPreviewNoticeView(Executor& executor, QWidget* parent)
    : QWidget(parent), executor_(executor) {
  setAccessibleRole(*this, QAccessible::StaticText);
  hide();
  opacity_.setStartValue(0.0);
  opacity_.setEndValue(0.0);
  connect(&opacity_, &QVariantAnimation::valueChanged, this, [this] { update(); });
  connect(&opacity_, &QVariantAnimation::finished, this, [this] {
    if (!notice_) setShown(false);
  });
}

PromptPreviewNoticeView::~PromptPreviewNoticeView() {
  dismissal_.cancel();
}

void PromptPreviewNoticeView::show(PromptPreviewNotice notice) {
  dismissal_.cancel();
  notice_ = notice;
  text_ = text(notice);
  setAccessibleName(text_);
  updateGeometry();
  setShown(true);
  fade(1, QEasingCurve::OutQuad, kAppearing);
  dismissal_ = dismissLater(lifetime_.weak(this));
}

void PromptPreviewNoticeView::clear() {
  dismissal_.cancel();
  notice_.reset();
  opacity_.stop();
  setShown(false);
}

Task<> PromptPreviewNoticeView::dismissLater(Weak<PromptPreviewNoticeView> self) {
  auto pause = self->executor_.sleep(kShown);
  const bool hasElapsed = co_await pause;
  if (!hasElapsed || !self) co_return;
  self->notice_.reset();
  self->fade(0, QEasingCurve::InQuad, kGoing);
}

void PromptPreviewNoticeView::fade(double to, QEasingCurve::Type curve, int milliseconds) {
  const double from = opacity_.currentValue().toDouble();
  opacity_.stop();
  opacity_.setStartValue(from);
  opacity_.setEndValue(to);
  opacity_.setEasingCurve(curve);
  opacity_.setDuration(isMotionReduced(*this) ? 0 : milliseconds);
  opacity_.start();
}

void PromptPreviewNoticeView::setShown(bool isShown) {
  if (isShown != isHidden()) return;
  setVisible(isShown);
  if (onVisibilityChanged) onVisibilityChanged();
}

QSize PromptPreviewNoticeView::sizeHint() const {
  return {QFontMetrics(scaled(font(), 1, QFont::DemiBold)).horizontalAdvance(text_) + 2 * kPadding, kHeight};
}

void PromptPreviewNoticeView::paintEvent(QPaintEvent*) {
  // Dark with a light edge, which stands out from any picture and from any card.
  const QColor ground(0x1f2023);
  const QColor edge(255, 255, 255, 90);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(opacity_.currentValue().toDouble());
  QRectF pill(QPointF(0, 0), QSizeF(sizeHint()));
  pill.moveCenter(QRectF(rect()).center());
  pill.adjust(0.5, 0.5, -0.5, -0.5);
  painter.setPen(QPen(edge, 1));
  painter.setBrush(ground);
  painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
  painter.setFont(scaled(font(), 1, QFont::DemiBold));
  painter.setPen(Qt::white);
  painter.drawText(pill, Qt::AlignCenter, text_);
}

}  // namespace quillmere
