#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "Corpus.h"

namespace corpus {
namespace {

struct Colors {
  QColor ground, text, dim, accent;
};

Colors colors(const Request& request, Words& words) {
  const bool isDark = request.theme == Theme::dark || (request.theme == Theme::mixed && words.chance(0.5));
  const int hue = words.number(0, 359);
  if (isDark) {
    return {QColor::fromHsv(hue, 30, words.number(24, 50)), QColor(212, 212, 214), QColor(140, 140, 145),
            QColor(206, 145, 120)};
  }
  return {QColor::fromHsv(hue, 6, words.number(238, 255)), QColor(30, 32, 36), QColor(118, 118, 122),
          QColor(150, 30, 30)};
}

/// A sheet that keeps what is written on it, in points.
class Sheet {
 public:
  Sheet(QSize size, const Request& request, const QColor& ground) : image_(size * request.scale, QImage::Format_RGB32) {
    image_.fill(ground);
    painter_.begin(&image_);
    painter_.scale(request.scale, request.scale);
    painter_.setRenderHint(QPainter::Antialiasing);
  }
  QPainter& painter() { return painter_; }
  /// Returns where it ends.
  double write(double x, double baseline, const QString& text, const QFont& font, const QColor& color) {
    painter_.setFont(font);
    painter_.setPen(color);
    painter_.drawText(QPointF(x, baseline), text);
    return x + QFontMetricsF(font).horizontalAdvance(text);
  }
  void say(const QString& line) { truth_ += line.simplified(); }
  Screen screen() {
    painter_.end();
    return {image_, truth_};
  }
  QImage& image() { return image_; }

 private:
  QImage image_;
  QPainter painter_;
  QStringList truth_;
};

QFont fontOf(const QString& family, int pixels) {
  QFont font(family);
  font.setPixelSize(pixels);
  return font;
}

QStringList operators(Words& words, int count) {
  QStringList lines;
  int depth = 0;
  while (lines.size() < count) {
    const QString indent(4 * depth, ' ');
    const auto member = [&] { return words.word() + '_' + words.word(); };
    switch (words.number(0, 11)) {
      case 0:
        lines += indent + "if __name__ == \"__main__\":";
        depth = std::min(depth + 1, 3);
        break;
      case 1:
        lines += indent + QString("def __%1__(self, %2=None):").arg(words.word(), words.word());
        depth = std::min(depth + 1, 3);
        break;
      case 2:
        lines += indent + QString("if (%1 === '%2' && %3 !== %4) {")
                              .arg(words.word(), words.word(), member())
                              .arg(words.number(0, 99));
        break;
      case 3:
        lines += indent + "# " + QString(words.number(12, 40), '-');
        break;
      case 4:
        lines += indent + QString("for (auto* %1 = begin; %1 != end; ++%1) --%2;").arg(words.word(), words.word());
        break;
      case 5:
        lines += indent + QString("self._%1 = {'%2': [%3, %4]}")
                              .arg(words.word(), words.word())
                              .arg(words.number(0, 99))
                              .arg(words.number(0, 999));
        break;
      case 6:
        lines += indent + QString("%1 --%2=%3 | grep -v '%4' >> /tmp/%5.log")
                              .arg(words.word(), words.word(), words.word(), words.word(), words.word());
        break;
      case 7:
        lines += indent + QString("return %1 <= %2 ? %3->%4() : \"%5\";")
                              .arg(words.word())
                              .arg(words.number(1, 40))
                              .arg(words.word(), words.word(), words.word());
        break;
      case 8:
        lines += indent + "# " + QString(words.number(10, 30), '=') + ' ' + words.phrase(2);
        break;
      case 9:
        lines += indent + QString("%1 += %2 * (%3 - %4) / 2.5").arg(words.word(), member(), words.word(), words.word());
        depth = std::max(depth - 1, 0);
        break;
      case 10:
        lines += indent + QString("std::map<QString, int> %1_ = { {\"%2\", 0} };").arg(words.word(), words.word());
        depth = std::max(depth - 1, 0);
        break;
      default:
        lines += indent +
                 QString("const %1 = (%2) => `${%3}/%4`;").arg(words.word(), words.word(), words.word(), words.word());
        depth = std::max(depth - 1, 0);
    }
  }
  return lines;
}

Screen code(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const QStringList lines = operators(words, 26);
  const QFont font = fontOf(words.chance(0.75) ? "DejaVu Sans Mono" : "Nimbus Mono PS", request.textPixels + 1);
  const double height = 1.35 * font.pixelSize();
  Sheet sheet(QSize(56 * request.textPixels, static_cast<int>(height * 28)), request, look.ground);
  for (int i = 0; i < lines.size(); ++i) {
    const double baseline = height * (i + 1.5);
    const QStringList parts = lines[i].split(' ');
    double x = 20;
    for (const QString& part : parts) {
      const QColor color = part.startsWith('#') || lines[i].trimmed().startsWith('#') ? look.dim
                           : part.contains('"') || part.contains('\'')                ? look.accent
                                                                                      : look.text;
      x = sheet.write(x, baseline, part + ' ', font, color);
    }
    sheet.say(lines[i]);
  }
  return sheet.screen();
}

/// Text that is hardly seen, as of disabled entries, comments and line numbers.
Screen faint(const Request& request, Words& words) {
  constexpr std::array<std::pair<int, int>, 6> kLight{
      {{240, 192}, {255, 200}, {250, 214}, {246, 176}, {232, 188}, {255, 222}}};
  constexpr std::array<std::pair<int, int>, 6> kDark{{{43, 90}, {30, 60}, {24, 62}, {18, 44}, {36, 76}, {50, 82}}};
  const bool isDark = request.theme == Theme::dark || (request.theme == Theme::mixed && words.chance(0.5));
  const auto& levels = isDark ? kDark : kLight;
  const QFont font = fontOf(request.family, request.textPixels);
  const double height = 1.7 * request.textPixels;
  Sheet sheet(QSize(52 * request.textPixels, static_cast<int>(height * 25)), request,
              QColor(levels[0].first, levels[0].first, levels[0].first));
  double y = 0;
  for (const auto& [ground, text] : levels) {
    sheet.painter().fillRect(QRectF(0, y, 52.0 * request.textPixels, 4 * height + 1), QColor(ground, ground, ground));
    for (int i = 0; i < 3; ++i) {
      const QString line = i == 1 ? words.fileName() + ", " + words.date() : words.phrase(words.number(3, 7));
      sheet.write(24, y + height * (i + 1.2), line, font, QColor(text, text, text));
      sheet.say(line);
    }
    y += 4 * height;
  }
  return sheet.screen();
}

/// A picture with the grain of a camera, with text beside, above and below.
Screen photo(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const int em = request.textPixels;
  Sheet sheet(QSize(72 * em, 38 * em), request, look.ground);
  const QRect picture(26 * em, 5 * em, 30 * em, 24 * em);
  const QFont font = fontOf(request.family, em);
  const auto line = [&](double x, double y, const QString& text) {
    sheet.write(x, y, text, font, look.text);
    sheet.say(text);
  };
  line(2 * em, 3 * em, words.sentence());
  for (int i = 0; i < 14; ++i) line(2 * em, (6.5 + 1.8 * i) * em, words.phrase(words.number(2, 3)));
  for (int i = 0; i < 12; ++i) line(58 * em, (6.5 + 2 * i) * em, words.phrase(1) + ": " + words.size());
  for (int i = 0; i < 3; ++i) line(2 * em, (32 + 1.8 * i) * em, words.sentence());
  const int grain = words.number(12, 18);
  const double shiftX = words.number(0, 60), shiftY = words.number(0, 60);
  QImage& image = sheet.image();
  const int scale = request.scale;
  for (int y = picture.top() * scale; y < (picture.bottom() + 1) * scale; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = picture.left() * scale; x < (picture.right() + 1) * scale; ++x) {
      const double u = (x / static_cast<double>(scale) + shiftX) / 40,
                   v = (y / static_cast<double>(scale) + shiftY) / 55;
      const double level = 120 + 50 * std::sin(u) * std::cos(v) + 40 * std::sin(v / 2 + u / 3);
      const auto channel = [&](double tint) {
        return std::clamp(static_cast<int>(level + tint) + words.number(-grain, grain), 0, 255);
      };
      row[x] = qRgb(channel(30), channel(0), channel(-30));
    }
  }
  return sheet.screen();
}

/// Letters without smooth edges, as bitmap fonts have them.
Screen bitmap(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  QFont font = fontOf(words.chance(0.6) ? "DejaVu Sans Mono" : "DejaVu Sans", 10 + request.textPixels % 4);
  font.setStyleStrategy(QFont::NoAntialias);
  font.setHintingPreference(QFont::PreferFullHinting);
  const double height = std::round(1.3 * font.pixelSize());
  const QStringList lines = words.terminal(12) + words.code(6) +
                            QStringList{words.address(), "/home/" + words.word(), words.sentence(),
                                        "cd ../" + words.word() + " && ls -la *.txt"};
  Sheet sheet(QSize(660, static_cast<int>(height * (static_cast<int>(lines.size()) + 2))), request, look.ground);
  sheet.painter().setRenderHint(QPainter::Antialiasing, false);
  // Letters of their own size on screens of any scale.
  sheet.painter().resetTransform();
  for (int i = 0; i < lines.size(); ++i) {
    sheet.write(12, height * (i + 1) + 4, lines[i], font, look.text);
    sheet.say(lines[i]);
  }
  return sheet.screen();
}

Screen headings(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const int sizes[] = {60, words.number(90, 130), words.number(140, 180), words.number(190, 240)};
  Sheet sheet(QSize(1500, 960), request, look.ground);
  double y = 20;
  for (const int size : sizes) {
    // At both scales of the same height in pixels.
    QFont font = fontOf(request.family, size / request.scale);
    font.setBold(words.chance(0.5));
    const QString text = words.phrase(size > 180 ? 1 : 2);
    y += 1.1 * size / request.scale;
    sheet.write(30, y, text, font, look.text);
    sheet.say(text);
    y += 0.25 * size / request.scale;
    const QString below = words.sentence();
    sheet.write(34, y + 20, below, fontOf(request.family, request.textPixels + 2), look.dim);
    sheet.say(below);
    y += 40;
  }
  return sheet.screen();
}

/// Cells in rows, and the leaders of a table of contents.
Screen tables(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const int em = request.textPixels;
  Sheet sheet(QSize(62 * em, 44 * em), request, look.ground);
  const QFont font = fontOf(request.family, em);
  const double columns[] = {2.0 * em, 18.0 * em, 34.0 * em, 48.0 * em};
  const bool hasRules = words.chance(0.6);
  for (int i = 0; i < 12; ++i) {
    const double y = (3 + 1.9 * i) * em;
    const QString cells[] = {words.phrase(2), words.person(), words.date(), words.amount()};
    for (int j = 0; j < 4; ++j) {
      sheet.write(columns[j], y, cells[j], font, i == 0 ? look.dim : look.text);
      sheet.say(cells[j]);
    }
    if (hasRules) sheet.painter().fillRect(QRectF(1.5 * em, y + 0.5 * em, 58 * em, 1), look.dim);
  }
  const QFont mono = fontOf("DejaVu Sans Mono", em);
  for (int i = 0; i < 8; ++i) {
    const bool isMono = i >= 4;
    const QString title = words.phrase(words.number(1, 3)), page = QString::number(words.number(1, 320));
    const QString dots(isMono ? 40 - static_cast<int>(title.size() + page.size()) : words.number(20, 50), '.');
    const QString line = title + ' ' + dots + ' ' + page;
    sheet.write(columns[0], (28 + 1.8 * i) * em, line, isMono ? mono : font, look.text);
    sheet.say(line);
  }
  return sheet.screen();
}

void icon(QPainter& painter, const QRectF& box, int kind, const QColor& color) {
  painter.save();
  painter.setPen(QPen(color, box.width() / 10));
  painter.setBrush(Qt::NoBrush);
  const QRectF inner = box.adjusted(box.width() / 8, box.width() / 8, -box.width() / 8, -box.width() / 8);
  switch (kind) {
    case 0:
      painter.drawEllipse(inner.adjusted(0, 0, -box.width() / 4, -box.width() / 4));
      painter.drawLine(inner.center() + QPointF(box.width() / 8, box.width() / 8), inner.bottomRight());
      break;
    case 1:
      for (const double part : {0.1, 0.5, 0.9})
        painter.drawLine(QPointF(inner.left(), inner.top() + part * inner.height()),
                         QPointF(inner.right(), inner.top() + part * inner.height()));
      break;
    case 2:
      painter.drawRoundedRect(inner, 2, 2);
      painter.drawLine(inner.topLeft(), inner.bottomRight());
      break;
    case 3:
      painter.drawPolyline(QPolygonF{inner.topLeft(), inner.center(), inner.bottomLeft()});
      break;
    case 4: {
      QPainterPath path(inner.bottomLeft());
      path.lineTo(inner.left(), inner.top() + inner.height() / 5);
      path.lineTo(inner.center().x(), inner.top() + inner.height() / 5);
      path.lineTo(inner.center().x() + inner.width() / 6, inner.top() + inner.height() / 2.5);
      path.lineTo(inner.right(), inner.top() + inner.height() / 2.5);
      path.lineTo(inner.bottomRight());
      path.closeSubpath();
      painter.fillPath(path, color);
      break;
    }
    default:
      painter.drawEllipse(inner);
      painter.drawLine(inner.center(), QPointF(inner.center().x(), inner.top()));
      painter.drawLine(inner.center(), QPointF(inner.right() - inner.width() / 4, inner.center().y()));
  }
  painter.restore();
}

/// Small gray labels with icons beside them.
Screen icons(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const QFont font = fontOf(request.family, 11);
  Sheet sheet(QSize(720, 420), request, look.ground);
  for (int column = 0; column < 3; ++column) {
    for (int i = 0; i < 16; ++i) {
      const double x = 16 + 230 * column, y = 26 + 24 * i;
      icon(sheet.painter(), QRectF(x, y - 12, 16, 16), words.number(0, 5), words.chance(0.5) ? look.dim : look.text);
      const QString text = words.chance(0.4) ? words.fileName() : words.phrase(words.number(1, 3)).toLower();
      sheet.write(x + (column == 2 ? 40 : 22), y, text, font, look.dim);
      sheet.say(text);
    }
  }
  return sheet.screen();
}

/// What programs print: rules of characters, options, lists with columns of their own.
Screen console(const Request& request, Words& words) {
  const Colors look = colors(request, words);
  const QFont font = fontOf("DejaVu Sans Mono", request.textPixels);
  QStringList lines;
  while (lines.size() < 26) {
    switch (words.number(0, 6)) {
      case 0:
        lines += QString(words.number(8, 60), words.chance(0.5) ? '=' : '-');
        break;
      case 1:
        lines +=
            QString("  -%1, --%2-%3=%4").arg(words.word()[0]).arg(words.word(), words.word(), words.word().toUpper());
        break;
      case 2:
        lines += words.word() + ' ' + QString(words.number(4, 30), '.') + ' ' + words.pick({"ok", "failed", "skipped"});
        break;
      case 3:
        lines += QString("%1  %2  %3").arg(words.word(), -14).arg(words.size(), 10).arg(words.fileName());
        break;
      case 4:
        lines += QString("=== %1 === [%2/%3]").arg(words.phrase(2)).arg(words.number(1, 9)).arg(words.number(10, 99));
        break;
      case 5:
        lines += QString("$ %1 -- \"%2\" ~/.%3_%4 && echo '_%5_'")
                     .arg(words.word(), words.word(), words.word(), words.word(), words.word());
        break;
      default:
        lines += words.terminal(1);
    }
  }
  const double height = 1.25 * request.textPixels;
  Sheet sheet(QSize(56 * request.textPixels, static_cast<int>(height * 28)), request, look.ground);
  for (int i = 0; i < lines.size(); ++i) {
    sheet.write(8, height * (i + 1.5), lines[i], font, look.text);
    sheet.say(lines[i]);
  }
  return sheet.screen();
}

}  // namespace

QString hardName(int kind) {
  constexpr const char* kNames[kHardKinds] = {"code",     "faint",  "photo", "bitmap",
                                              "headings", "tables", "icons", "console"};
  return kNames[kind];
}

Screen hardScreen(int kind, const Request& request) {
  Words words(request.seed);
  using Make = Screen (*)(const Request&, Words&);
  constexpr Make kMake[kHardKinds] = {code, faint, photo, bitmap, headings, tables, icons, console};
  return kMake[kind](request, words);
}

}  // namespace corpus
