#include "controls/ActionButton.h"

#include <QtGui/QPainter>

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr int kIconSide = 28;
constexpr int kSymbol = 18;
constexpr int kGap = 7;
constexpr int kChevron = 14;  ///< of one that opens a menu

}  // namespace

ActionButton::ActionButton(Role role, const QString& symbol, const QString& text, QWidget* parent)
    : QPushButton(text, parent), role_(role), symbol_(symbol) {
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAutoDefault(false);
  setCursor(Qt::ArrowCursor);
}

void ActionButton::setSymbol(const QString& symbol) {
  if (symbol == symbol_) return;
  symbol_ = symbol;
  update();
}

void ActionButton::setNote(const QString& note) {
  if (note == note_) return;
  note_ = note;
  update();
}

void ActionButton::setDimmed(bool isDimmed) {
  if (isDimmed == isDimmed_) return;
  isDimmed_ = isDimmed;
  update();
}

QSize ActionButton::sizeHint() const {
  if (role_ == Role::icon) return {kIconSide, kIconSide};
  const int textWidth = QFontMetrics(scaled(font(), 1, QFont::DemiBold)).horizontalAdvance(text());
  const int symbolWidth = symbol_.isEmpty() ? 0 : kSymbol + kGap;
  const int chevronWidth = menu() ? kGap + kChevron : 0;
  return {2 * Metrics::kPadding + symbolWidth + textWidth + chevronWidth, Metrics::kControlHeight};
}

void ActionButton::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  const ButtonLook look = buttonLook(theme, role_,
                                     isDown()       ? Touch::pressed
                                     : underMouse() ? Touch::hovered
                                                    : Touch::none,
                                     isEnabled() && !isDimmed_);
  const QColor ink = look.ink;

  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal radius = role_ == Role::icon ? height() / 2.0 : Radius::kControl;
  paintGround(painter, rect(), radius, look.ground, theme);

  const QFont font = scaled(this->font(), 1, QFont::DemiBold);
  const bool hasNote = !note_.isEmpty();
  const int room = width() - 2 * Metrics::kPadding - kSymbol - kGap;
  const QString text = hasNote ? QFontMetrics(font).elidedText(note_, Qt::ElideRight, room) : this->text();
  const QString symbol = hasNote ? QStringLiteral("checkmark") : symbol_;
  const int textWidth = role_ == Role::icon ? 0 : QFontMetrics(font).horizontalAdvance(text);
  const int symbolSide = role_ == Role::icon ? Metrics::kSmallSymbol : kSymbol;
  const int symbolWidth = symbol.isEmpty() ? 0 : symbolSide;
  const int gap = textWidth > 0 && symbolWidth > 0 ? kGap : 0;
  const int chevronWidth = menu() ? kGap + kChevron : 0;
  int x = (width() - symbolWidth - gap - textWidth - chevronWidth) / 2;
  if (symbolWidth > 0) {
    if (ring_.isWorking()) {
      ring_.paint(painter, QPointF(x + symbolSide / 2.0, height() / 2.0), ink);
    } else {
      painter.drawPixmap(x, (height() - symbolSide) / 2, symbolPixmap(symbol, symbolSide, ink, devicePixelRatioF()));
    }
    x += symbolWidth + gap;
  }
  if (textWidth > 0) {
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QRect(x, 0, textWidth + 1, height()), Qt::AlignVCenter | Qt::AlignLeft, text);
  }
  if (menu()) {
    painter.drawPixmap(x + textWidth + kGap, (height() - kChevron) / 2,
                       symbolPixmap(QStringLiteral("chevron.down"), kChevron, ink, devicePixelRatioF()));
  }
  if (hasFocus()) paintFocusRing(painter, rect(), radius, look.ring);
}

}  // namespace quillmere
