#pragma once

#include <gtest/gtest.h>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "controls/ApplicationAppearance.h"
#include "controls/Theme.h"

namespace quillmere::testing {

/// The same widgets through every change of the desktop.
class DesktopLook : public ::testing::Test {
 protected:
  using Scheme = Appearance::Scheme;

  DesktopLook() { show(of(Scheme::light)); }
  ~DesktopLook() override { show({}); }

  static Appearance of(Scheme scheme, bool isHighContrast = false) {
    Appearance appearance;
    appearance.scheme = scheme;
    appearance.isHighContrast = isHighContrast;
    return appearance;
  }
  static Theme theme() { return Theme(QApplication::palette()); }
  static QImage picture(QWidget& widget) { return widget.grab().toImage().convertToFormat(QImage::Format_RGB32); }
  /// Whether the colour is anywhere in what the widget shows.
  static bool shows(QWidget& widget, const QColor& color) {
    const QImage image = picture(widget);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) == color.rgb()) return true;
      }
    }
    return false;
  }

  /// What a style paints for the option, on magenta.
  template <typename Option>
  static QImage drawn(const Option& option, void (*paint)(const Option&, QPainter&)) {
    QImage image(option.rect.size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    paint(option, painter);
    return image;
  }

  /// Widgets are told in a later turn of the loop.
  void show(const Appearance& appearance) {
    look.show(appearance);
    QCoreApplication::processEvents();
  }

  ApplicationAppearance& look = sharedLook();

 private:
  /// One, as in the program: the style belongs to the application.
  static ApplicationAppearance& sharedLook() {
    static ApplicationAppearance shared;
    return shared;
  }
};

}  // namespace quillmere::testing
