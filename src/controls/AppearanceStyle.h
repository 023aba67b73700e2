#pragma once

#include <QtWidgets/QProxyStyle>

namespace quillmere {

/// The desktop's widget style, with what it leaves out of the appearance: no animations where less motion is wanted,
/// and edges of controls that are seen in the dark and in higher contrast.
class AppearanceStyle final : public QProxyStyle {
 public:
  void setMotionReduced(bool isReduced) { isMotionReduced_ = isReduced; }

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* answer) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  bool isMotionReduced_ = false;
};

/// Whether things should appear and go at once instead of fading or moving.
bool isMotionReduced(const QWidget& widget);

}  // namespace quillmere
