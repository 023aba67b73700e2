#include "controls/AppearanceStyle.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QWidget>

#include "controls/Theme.h"

namespace quillmere {
namespace {

/// Styles draw edges in a darker shade of the window, which in the dark nobody sees.
void drawEdge(const QStyleOption& option, QPainter& painter) {
  const Theme theme(option.palette);
  if (!theme.isHighContrast && !theme.isDark) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(theme.fieldBorder, 1));
  painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
  painter.restore();
}

}  // namespace

int AppearanceStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                               QStyleHintReturn* answer) const {
  if (hint == SH_Widget_Animation_Duration && isMotionReduced_) return 0;
  return QProxyStyle::styleHint(hint, option, widget, answer);
}

void AppearanceStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  switch (element) {
    case PE_PanelLineEdit: {
      // One without a frame draws its own, if any.
      const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
      if (!frame || frame->lineWidth > 0) drawEdge(*option, *painter);
      break;
    }
    case PE_PanelButtonCommand:
    case PE_IndicatorCheckBox:
      drawEdge(*option, *painter);
      break;
    default:
      break;
  }
}

void AppearanceStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                         const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if (control == CC_ComboBox || control == CC_SpinBox) drawEdge(*option, *painter);
}

bool isMotionReduced(const QWidget& widget) {
  return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0;
}

}  // namespace quillmere
