#include "controls/AppearanceStyle.h"

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QStyledItemDelegate>

#include "controls/BarStyle.h"
#include "controls/Grounds.h"
#include "controls/InputStyle.h"
#include "controls/MarkStyle.h"
#include "controls/MenuStyle.h"
#include "controls/Metrics.h"
#include "controls/StyleIcons.h"
#include "controls/StylePainting.h"
#include "controls/Theme.h"
#include "controls/ViewStyle.h"

namespace quillmere {
namespace {

constexpr int kRowHeight = 24;
constexpr int kChoiceHeight = 30;
/// Around the texts of check boxes, for their focus ring.
constexpr int kRing = 4;

bool isInListOfChoices(const QWidget* widget) {
  return widget && widget->parentWidget() && widget->parentWidget()->inherits("QComboBoxPrivateContainer");
}

void paintRing(const QStyleOption& option, QPainter& painter) {
  // The row that is chosen is seen by its ground.
  const auto* ring = qstyleoption_cast<const QStyleOptionFocusRect*>(&option);
  const Theme theme(option.palette);
  if (ring && ring->state.testFlag(QStyle::State_Item) && ring->backgroundColor == theme.accent) return;
  const SmoothPainting smooth(painter);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(theme.focusRing, 2));
  painter.drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), Radius::kMark, Radius::kMark);
}

QString chevron(QStyle::PrimitiveElement element) {
  switch (element) {
    case QStyle::PE_IndicatorArrowUp:
      return QStringLiteral("chevron.up");
    case QStyle::PE_IndicatorArrowLeft:
      return QStringLiteral("chevron.left");
    case QStyle::PE_IndicatorArrowRight:
      return QStringLiteral("chevron.right");
    default:
      return QStringLiteral("chevron.down");
  }
}

void paintToolButton(const QStyleOption& option, QPainter& painter) {
  const bool isOn = option.state.testFlag(QStyle::State_On);
  if (!isOn && touchOf(option) == Touch::none) return;
  const Theme theme(option.palette);
  const SmoothPainting smooth(painter);
  paintGround(painter, option.rect, Radius::kItem,
              buttonLook(theme, ButtonRole::secondary, isOn ? Touch::pressed : touchOf(option), true).ground, theme);
}

}  // namespace

AppearanceStyle::AppearanceStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void AppearanceStyle::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  if (PopupSurface::isOne(*widget)) surfaces_.adopt(*widget);
  if (auto* choice = qobject_cast<QComboBox*>(widget)) {
    // Qt's own delegate for lists of choices draws past the style.
    if (choice->itemDelegate()->inherits("QComboBoxDelegate")) choice->setItemDelegate(new QStyledItemDelegate(choice));
  }
  if (auto* view = qobject_cast<QAbstractItemView*>(widget); view && isInListOfChoices(view)) {
    view->viewport()->setAutoFillBackground(false);
  }
}

int AppearanceStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                               QStyleHintReturn* answer) const {
  switch (hint) {
    case SH_Widget_Animation_Duration:
      return isMotionReduced_ ? 0 : QProxyStyle::styleHint(hint, option, widget, answer);
    case SH_ComboBox_Popup:
      return 0;  // a list below the choice, which stays in sight
    case SH_ComboBox_PopupFrameStyle:
      return static_cast<int>(QFrame::StyledPanel) | static_cast<int>(QFrame::Plain);
    case SH_ToolTipLabel_Opacity:
      return 255;
    case SH_DialogButtonBox_ButtonsHaveIcons:
      return 0;
    case SH_TabBar_Alignment:
      return Qt::AlignCenter;
    case SH_EtchDisabledText:
      return 0;
    default:
      return QProxyStyle::styleHint(hint, option, widget, answer);
  }
}

int AppearanceStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_MenuPanelWidth:
      return PopupSurface::kMargin;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
    case PM_MenuTearoffHeight:
      return 0;
    case PM_SubMenuOverlap:
      // The new surface's edge lies on that of the first.
      return PopupSurface::kMargin - 2 * PopupSurface::kReach - 2;
    case PM_ToolTipLabelFrameWidth:
      return PopupSurface::kReach + 6;
    case PM_DefaultFrameWidth:
      if (widget && widget->inherits("QComboBoxPrivateContainer")) return PopupSurface::kMargin;
      return qobject_cast<const QAbstractScrollArea*>(widget) ? ViewStyle::kFrame : 1;
    case PM_FocusFrameHMargin:
      return isInListOfChoices(widget) ? 6 : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
      return MarkStyle::kSide;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
      return 10;
    case PM_ScrollBarExtent:
      return BarStyle::kScrollBar;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_TabBarBaseOverlap:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
      return 0;
    case PM_MenuBarHMargin:
    case PM_MenuBarVMargin:
      return BarStyle::kMenuBarMargin;
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
      return 0;
    case PM_TabBarTabHSpace:
      return 2 * Metrics::kPadding + 4;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

QSize AppearanceStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                        const QWidget* widget) const {
  const QSize plain = QProxyStyle::sizeFromContents(type, option, contents, widget);
  switch (type) {
    case CT_MenuItem:
      if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
        return MenuStyle::itemSize(*item, contents);
      }
      break;
    case CT_LineEdit:
      if (const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option); field && field->lineWidth > 0) {
        return InputStyle::inputSize(type, contents);
      }
      break;
    case CT_SpinBox:
    case CT_ComboBox:
      return InputStyle::inputSize(type, contents);
    case CT_PushButton:
      // The text is heavier than the one that was measured.
      return {contents.width() + contents.width() / 10 + 2 * Metrics::kPadding, Metrics::kControlHeight};
    case CT_MenuBarItem:
      return BarStyle::menuTitleSize(contents);
    case CT_CheckBox:
    case CT_RadioButton:
      return {plain.width() + 2 * kRing, std::max(plain.height(), MarkStyle::kSide + kRing)};
    case CT_TabBarTab:
      return BarStyle::tabSize(plain);
    case CT_ItemViewItem:
      return {plain.width(), std::max(plain.height(), isInListOfChoices(widget) ? kChoiceHeight : kRowHeight)};
    default:
      break;
  }
  return plain;
}

QRect AppearanceStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
  switch (element) {
    case SE_LineEditContents:
      if (const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option)) {
        return InputStyle::fieldContents(*field);
      }
      break;
    case SE_ProgressBarGroove:
    case SE_ProgressBarContents:
      return option->rect;
    case SE_CheckBoxFocusRect:
    case SE_RadioButtonFocusRect:
      return QProxyStyle::subElementRect(element, option, widget)
          .adjusted(1 - kRing, 0, kRing - 1, 0)
          .intersected(option->rect);
    default:
      break;
  }
  return QProxyStyle::subElementRect(element, option, widget);
}

QRect AppearanceStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                      const QWidget* widget) const {
  QRect place;
  if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option); bar && control == CC_ScrollBar) {
    place = BarStyle::scrollBarPart(*bar, part);
  } else if (const auto* number = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
             number && control == CC_SpinBox) {
    place = InputStyle::numberPart(*number, part);
  } else if (const auto* choice = qstyleoption_cast<const QStyleOptionComboBox*>(option);
             choice && control == CC_ComboBox) {
    place = InputStyle::choicePart(*choice, part);
  } else if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
             group && control == CC_GroupBox && !group->subControls.testFlag(SC_GroupBoxCheckBox)) {
    place = ViewStyle::groupPart(*group, part);
  } else {
    return QProxyStyle::subControlRect(control, option, part, widget);
  }
  return visualRect(option->direction, option->rect, place);
}

QIcon AppearanceStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const {
  const QPalette palette = widget ? widget->palette() : QApplication::palette();
  const QIcon own = styleIcon(which, widget ? widget->layoutDirection() : QApplication::layoutDirection(), palette);
  return own.isNull() ? QProxyStyle::standardIcon(which, option, widget) : own;
}

void AppearanceStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const {
  switch (element) {
    case PE_PanelMenu:
    case PE_PanelTipLabel:
      if (widget) surfaces_.paint(*painter, *widget);
      return;
    case PE_FrameMenu:
    case PE_PanelMenuBar:
    case PE_FrameLineEdit:
    case PE_FrameTabWidget:
    case PE_FrameTabBarBase:
    case PE_FrameStatusBarItem:
      return;
    case PE_PanelLineEdit:
      if (const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option)) {
        InputStyle::paintField(*field, *painter);
        return;
      }
      break;
    case PE_Frame:
      if (qobject_cast<const QAbstractScrollArea*>(widget)) {
        ViewStyle::paintFrame(*option, *painter);
        return;
      }
      break;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
      MarkStyle::paintCheckBox(*option, *painter);
      return;
    case PE_IndicatorRadioButton:
      MarkStyle::paintRadioButton(*option, *painter);
      return;
    case PE_IndicatorArrowUp:
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowLeft:
    case PE_IndicatorArrowRight: {
      const Theme theme(option->palette);
      const int side = std::min({Metrics::kSmallSymbol, option->rect.width(), option->rect.height()});
      paintSymbol(*painter, option->rect, chevron(element), side,
                  isEnabled(*option) ? theme.secondaryText : theme.disabledText);
      return;
    }
    case PE_IndicatorHeaderArrow:
      if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
        ViewStyle::paintSortArrow(*header, *painter);
        return;
      }
      break;
    case PE_FrameFocusRect:
      if (option->state.testFlag(State_KeyboardFocusChange)) paintRing(*option, *painter);
      return;
    case PE_PanelButtonTool:
      paintToolButton(*option, *painter);
      return;
    case PE_PanelItemViewItem:
      if (const auto* row = qstyleoption_cast<const QStyleOptionViewItem*>(option)) {
        ViewStyle::paintRow(*row, *painter);
        return;
      }
      break;
    case PE_PanelItemViewRow:
      return;
    default:
      break;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void AppearanceStyle::drawText(ControlElement element, const QStyleOption& option, const QColor& ink, QPainter& painter,
                               const QWidget* widget) const {
  const auto inked = [&ink](QPalette palette) {
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText}) palette.setColor(role, ink);
    return palette;
  };
  if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option)) {
    QStyleOptionButton own(*button);
    own.palette = inked(own.palette);
    QProxyStyle::drawControl(element, &own, &painter, widget);
  } else if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(&option)) {
    QStyleOptionTab own(*tab);
    own.palette = inked(own.palette);
    // Its ring is around the tab, not around the text.
    own.state.setFlag(State_HasFocus, false);
    QProxyStyle::drawControl(element, &own, &painter, widget);
  }
}

void AppearanceStyle::drawPushButton(const QStyleOptionButton& button, QPainter& painter, const QWidget* widget) const {
  const Theme theme(button.palette);
  const bool isFirst = button.features.testFlag(QStyleOptionButton::DefaultButton);
  const ButtonLook look =
      buttonLook(theme, isFirst ? ButtonRole::primary : ButtonRole::secondary, touchOf(button), isEnabled(button));
  {
    const SmoothPainting smooth(painter);
    const bool isFlat = button.features.testFlag(QStyleOptionButton::Flat) && touchOf(button) == Touch::none;
    if (!isFlat) paintGround(painter, button.rect, Radius::kControl, look.ground, theme);
    painter.setFont(scaled(painter.font(), 1, QFont::DemiBold));
    drawText(CE_PushButtonLabel, button, look.ink, painter, widget);
    if (showsFocus(button)) paintFocusRing(painter, button.rect, Radius::kControl, look.ring);
  }
}

void AppearanceStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
  switch (element) {
    case CE_MenuItem:
      if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
        MenuStyle::paintItem(*item, *painter);
        return;
      }
      break;
    case CE_MenuBarItem:
      if (const auto* title = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
        BarStyle::paintMenuTitle(*title, *painter, styleHint(SH_UnderlineShortcut, option, widget, nullptr) != 0);
        return;
      }
      break;
    case CE_MenuBarEmptyArea:
      BarStyle::paintMenuBar(*option, *painter);
      return;
    case CE_Splitter:
      BarStyle::paintSplitter(*option, *painter);
      return;
    case CE_MenuEmptyArea:
    case CE_MenuHMargin:
    case CE_MenuVMargin:
    case CE_ProgressBarContents:
    case CE_ProgressBarLabel:
      return;
    case CE_ProgressBarGroove:
      if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
        BarStyle::paintProgress(*bar, *painter);
        return;
      }
      break;
    case CE_ShapedFrame:
      if (widget && PopupSurface::isOne(*widget)) {
        surfaces_.paint(*painter, *widget);
        return;
      }
      break;
    case CE_PushButton:
      if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
        drawPushButton(*button, *painter, widget);
        return;
      }
      break;
    case CE_TabBarTabShape:
      if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
        BarStyle::paintTab(*tab, *painter);
        return;
      }
      break;
    case CE_TabBarTabLabel: {
      const Theme theme(option->palette);
      const bool isShown = option->state.testFlag(State_Selected);
      drawText(element, *option,
               !isEnabled(*option) ? theme.disabledText
               : isShown           ? theme.text
                                   : theme.secondaryText,
               *painter, widget);
      return;
    }
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
      ViewStyle::paintHeader(*option, *painter);
      return;
    default:
      break;
  }
  QProxyStyle::drawControl(element, option, painter, widget);
}

void AppearanceStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                         const QWidget* widget) const {
  if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option); bar && control == CC_ScrollBar) {
    BarStyle::paintScrollBar(*bar, *painter);
  } else if (const auto* number = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
             number && control == CC_SpinBox) {
    InputStyle::paintNumber(*number, *painter);
  } else if (const auto* choice = qstyleoption_cast<const QStyleOptionComboBox*>(option);
             choice && control == CC_ComboBox) {
    InputStyle::paintChoice(*choice, *painter);
  } else if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
             group && control == CC_GroupBox && !group->subControls.testFlag(SC_GroupBoxCheckBox)) {
    ViewStyle::paintGroup(*group, *painter);
  } else {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
  }
}

bool isMotionReduced(const QWidget& widget) {
  return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0;
}

}  // namespace quillmere
