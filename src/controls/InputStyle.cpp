#include "controls/InputStyle.h"

#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/PopupSurface.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"

namespace quillmere::InputStyle {
namespace {

constexpr int kSteps = 26;  ///< the two buttons of a number
constexpr int kStepSymbol = 12;
constexpr int kChevron = Metrics::kSmallSymbol;
/// Between a choice and the list that opens below it.
constexpr int kListGap = 4;

void paintStep(const QStyleOptionSpinBox& number, QPainter& painter, QStyle::SubControl part, const QString& symbol,
               QAbstractSpinBox::StepEnabledFlag step) {
  const Theme theme(number.palette);
  const QRect place = QStyle::visualRect(number.direction, number.rect, numberPart(number, part));
  const bool canStep = isEnabled(number) && number.stepEnabled.testFlag(step);
  if (canStep && number.activeSubControls.testFlag(part) && number.state.testFlag(QStyle::State_MouseOver)) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(number.state.testFlag(QStyle::State_Sunken) ? theme.fillPressed : theme.fillHover);
    painter.drawRoundedRect(QRectF(place).adjusted(0, 1, -1, -1), Radius::kMark, Radius::kMark);
  }
  paintSymbol(painter, place, symbol, kStepSymbol, canStep ? theme.secondaryText : theme.disabledText);
}

}  // namespace

void paintField(const QStyleOptionFrame& field, QPainter& painter) {
  // One without a frame stands in something that has one.
  if (field.lineWidth <= 0) return;
  const SmoothPainting smooth(painter);
  quillmere::paintField(painter, field.rect, Theme(field.palette), showsFocus(field));
}

QRect fieldContents(const QStyleOptionFrame& field) {
  // Qt keeps two points beside the text.
  constexpr int kInset = Metrics::kFieldPadding - 2;
  return field.lineWidth > 0 ? field.rect.adjusted(kInset, 2, -kInset, -2) : field.rect;
}

void paintNumber(const QStyleOptionSpinBox& number, QPainter& painter) {
  const SmoothPainting smooth(painter);
  quillmere::paintField(painter, number.rect, Theme(number.palette), showsFocus(number));
  paintStep(number, painter, QStyle::SC_SpinBoxUp, QStringLiteral("chevron.up"), QAbstractSpinBox::StepUpEnabled);
  paintStep(number, painter, QStyle::SC_SpinBoxDown, QStringLiteral("chevron.down"), QAbstractSpinBox::StepDownEnabled);
}

QRect numberPart(const QStyleOptionSpinBox& number, QStyle::SubControl part) {
  constexpr int kEdge = 3;
  const QRect steps(number.rect.right() + 1 - kEdge - kSteps, number.rect.top() + kEdge, kSteps,
                    number.rect.height() - 2 * kEdge);
  switch (part) {
    case QStyle::SC_SpinBoxUp:
      return steps.adjusted(0, 0, 0, -steps.height() / 2);
    case QStyle::SC_SpinBoxDown:
      return steps.adjusted(0, steps.height() - steps.height() / 2, 0, 0);
    case QStyle::SC_SpinBoxEditField:
      return number.rect.adjusted(Metrics::kFieldPadding - 2, 2, -kSteps - kEdge, -2);
    default:
      return number.rect;
  }
}

void paintChoice(const QStyleOptionComboBox& choice, QPainter& painter) {
  const Theme theme(choice.palette);
  const SmoothPainting smooth(painter);
  if (choice.editable) {
    quillmere::paintField(painter, choice.rect, theme, showsFocus(choice));
  } else {
    // A button's ground, on an input's edge.
    quillmere::paintField(painter, choice.rect, theme, showsFocus(choice));
    const Touch touch = touchOf(choice);
    if (touch != Touch::none) {
      paintGround(painter, QRectF(choice.rect).adjusted(1, 1, -1, -1), Radius::kControl - 1,
                  buttonLook(theme, ButtonRole::secondary, Touch::none, true).ground, theme);
    }
  }
  const QRect arrow = QStyle::visualRect(choice.direction, choice.rect, choicePart(choice, QStyle::SC_ComboBoxArrow));
  paintSymbol(painter, arrow, QStringLiteral("chevron.down"), kChevron,
              isEnabled(choice) ? theme.secondaryText : theme.disabledText);
}

QRect choicePart(const QStyleOptionComboBox& choice, QStyle::SubControl part) {
  constexpr int kArrow = kChevron + Metrics::kFieldPadding;
  switch (part) {
    case QStyle::SC_ComboBoxArrow:
      return {choice.rect.right() + 1 - kArrow, choice.rect.top(), kChevron, choice.rect.height()};
    case QStyle::SC_ComboBoxEditField:
      return choice.rect.adjusted(Metrics::kFieldPadding - (choice.editable ? 2 : 0), 2, -kArrow - 2, -2);
    case QStyle::SC_ComboBoxListBoxPopup: {
      // Its surface, inside its shadow, is as wide as the choice.
      constexpr int kReach = PopupSurface::kReach;
      return choice.rect.adjusted(-kReach, kReach - kListGap, kReach, -kReach + kListGap);
    }
    default:
      return choice.rect;
  }
}

QSize inputSize(QStyle::ContentsType type, const QSize& text) {
  const int height = std::max(Metrics::kControlHeight, text.height() + 10);
  switch (type) {
    case QStyle::CT_SpinBox:
      return {text.width() + Metrics::kFieldPadding + kSteps + 6, height};
    case QStyle::CT_ComboBox:
      return {text.width() + 3 * Metrics::kFieldPadding + kChevron, height};
    default:
      return {text.width() + 2 * Metrics::kFieldPadding, height};
  }
}

}  // namespace quillmere::InputStyle
