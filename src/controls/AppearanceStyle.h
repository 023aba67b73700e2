#pragma once

#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QStyleOption>
#include <functional>

#include "controls/PopupSurface.h"

namespace quillmere {

/// How Qt's own controls look: like the card, in the theme's colours, and the same on every desktop. What each kind
/// looks like stands in MenuStyle, InputStyle, MarkStyle, BarStyle and ViewStyle; this one hands out.
class AppearanceStyle final : public QProxyStyle {
 public:
  AppearanceStyle();

  void setMotionReduced(bool isReduced) { isMotionReduced_ = isReduced; }
  /// Asks whether translucent pixels show what lies below them.
  void setCompositing(std::function<bool()> isCompositing) { surfaces_.isCompositing = std::move(isCompositing); }

  using QProxyStyle::polish;
  void polish(QWidget* widget) override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* answer) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override;
  QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;
  QIcon standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  void drawPushButton(const QStyleOptionButton& button, QPainter& painter, const QWidget* widget) const;
  void drawText(ControlElement element, const QStyleOption& option, const QColor& ink, QPainter& painter,
                const QWidget* widget) const;

  bool isMotionReduced_ = false;
  mutable PopupSurface surfaces_;
};

/// Whether things should appear and go at once instead of fading or moving.
bool isMotionReduced(const QWidget& widget);

}  // namespace quillmere
