#include "PaintedDesktop.h"

#include <QtGui/QFontMetrics>
#include <QtGui/QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace {

using Random = std::mt19937;

int between(Random& random, int least, int most) {
  // Not std::uniform_int_distribution, whose numbers differ between standard libraries.
  return least + static_cast<int>(random() % static_cast<unsigned>(std::max(1, most - least + 1)));
}

int channel(double value) {
  return std::clamp(static_cast<int>(std::lround(value)), 0, 255);
}

/// Sky and hills with the grain of a photograph that was scaled to the screen.
void paintWallpaper(QImage& image, Random& random) {
  const double hue = between(random, 0, 100) / 100.0;
  for (int y = 0; y < image.height(); ++y) {
    const double down = static_cast<double>(y) / image.height();
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      const double across = static_cast<double>(x) / image.width();
      const double hill = 0.6 + 0.08 * std::sin(across * 9 + hue * 5) + 0.03 * std::sin(across * 31);
      const double grain = static_cast<double>(random() % 5) - 2;
      const double light = down < hill ? 1 - 0.5 * down : 0.55 - 0.4 * (down - hill) + 0.05 * std::sin(across * 200);
      row[x] = qRgb(channel(light * (90 + 80 * hue + 40 * across) + grain), channel(light * (150 + 30 * down) + grain),
                    channel(light * (down < hill ? 235 : 110) + grain));
    }
  }
}

QString words(Random& random, int letters) {
  QString text;
  while (text.size() < letters) {
    for (int length = between(random, 2, 10); length > 0; --length) {
      text += QLatin1Char(static_cast<char>('a' + between(random, 0, 25)));
    }
    text += QLatin1Char(random() % 9 == 0 ? '.' : ' ');
  }
  return text;
}

void paintText(QPainter& painter, const QRect& area, bool isDark, Random& random) {
  const std::array<QColor, 4> inks = isDark ? std::array<QColor, 4>{"#d5dde3", "#8bd48b", "#e0a86a", "#7fb4e6"}
                                            : std::array<QColor, 4>{"#22262a", "#33516e", "#6a3d7d", "#7a7f85"};
  const int step = QFontMetrics(painter.font()).lineSpacing();
  painter.setClipRect(area);
  for (int y = area.top() + step; y < area.bottom(); y += step) {
    if (random() % 8 == 0) continue;
    painter.setPen(inks.at(random() % (random() % 3 == 0 ? inks.size() : 1)));
    const int indent = step * between(random, 0, 2);
    painter.drawText(area.left() + indent, y, words(random, between(random, 10, 110)));
  }
  painter.setClipping(false);
}

void paintWindow(QPainter& painter, const QRect& frame, double scale, Random& random) {
  const auto points = [&](double value) { return static_cast<int>(std::lround(value * scale)); };
  painter.setPen(Qt::NoPen);
  for (int spread = points(24); spread > 0; spread -= points(2)) {
    painter.setBrush(QColor(0, 0, 0, 6));
    painter.drawRoundedRect(frame.adjusted(-spread, -spread / 2, spread, spread), spread, spread);
  }
  const bool isDark = random() % 3 == 0;
  painter.setBrush(isDark ? QColor("#20262c") : QColor("#fbfbfa"));
  painter.drawRoundedRect(frame, points(10), points(10));
  const QRect bar(frame.topLeft(), QSize(frame.width(), points(38)));
  painter.setBrush(isDark ? QColor("#2c343c") : QColor("#e9e9e7"));
  painter.drawRoundedRect(bar, points(10), points(10));
  const std::array<QColor, 3> buttons{"#ff5f57", "#febc2e", "#28c840"};
  for (int i = 0; i < 3; ++i) {
    painter.setBrush(buttons.at(static_cast<size_t>(i)));
    painter.drawEllipse(bar.left() + points(14 + 20 * i), bar.top() + points(13), points(12), points(12));
  }
  QFont font(random() % 2 == 0 ? QStringLiteral("DejaVu Sans Mono") : QStringLiteral("Inter"));
  font.setPixelSize(points(between(random, 12, 15)));
  painter.setFont(font);
  paintText(painter, frame.adjusted(points(14), points(46), -points(14), -points(10)), isDark, random);
}

}  // namespace

QImage paintedDesktop(QSize size, unsigned seed) {
  Random random(seed);
  QImage image(size, QImage::Format_RGB32);
  paintWallpaper(image, random);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = size.width() > 3000 ? 2 : 1;
  for (int i = 0; i < 5; ++i) {
    const int width = between(random, size.width() * 3 / 10, size.width() * 5 / 10);
    const int height = between(random, size.height() * 3 / 10, size.height() * 6 / 10);
    const int x = between(random, 0, size.width() - width);
    const int y = between(random, 30, size.height() - height);
    paintWindow(painter, QRect(x, y, width, height), scale, random);
  }
  painter.fillRect(0, 0, size.width(), static_cast<int>(28 * scale), QColor("#1d2126"));
  return image;
}
