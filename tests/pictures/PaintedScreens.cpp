#include "PaintedScreens.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <cmath>

namespace quillmere {
namespace {

/// A picture that is written from the top to the bottom.
class Sheet {
 public:
  Sheet(QSize size, const QColor& ground) : image_(size, QImage::Format_RGB32) {
    image_.fill(ground);
    painter_.begin(&image_);
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  }
  QPainter& painter() { return painter_; }
  QSize size() const { return image_.size(); }
  void setFont(const char* family, int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font(QString::fromLatin1(family));
    font.setPixelSize(pixels);
    font.setWeight(weight);
    painter_.setFont(font);
  }
  void fill(const QRectF& place, const QColor& color, qreal radius = 0) {
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(color);
    painter_.drawRoundedRect(place, radius, radius);
  }
  void write(int x, int y, const QColor& ink, const QString& text) {
    painter_.setPen(ink);
    painter_.drawText(x, y, text);
  }
  QImage finished() {
    painter_.end();
    return image_;
  }

 private:
  QImage image_;
  QPainter painter_;
};

struct Line {
  const char* text;
  const char* color;
};

void writeLines(Sheet& sheet, int x, int y, int step, std::initializer_list<Line> lines) {
  for (const Line& line : lines) {
    sheet.write(x, y, QColor(QLatin1String(line.color)), QString::fromUtf8(line.text));
    y += step;
  }
}

QImage terminal() {
  Sheet sheet(QSize(1180, 640), QColor(0x1b2026));
  sheet.fill(QRect(0, 0, 1180, 40), QColor(0x2a3138));
  sheet.setFont("Inter", 15, QFont::Medium);
  sheet.write(510, 26, QColor(0xc6ced6), QStringLiteral("report — make"));
  sheet.setFont("DejaVu Sans Mono", 20);
  writeLines(sheet, 28, 84, 33,
             {{"~/report $ make", "#f2f4f6"},
              {"[ 1/12] chapter-1.tex", "#aeb8c2"},
              {"[ 2/12] chapter-2.tex", "#aeb8c2"},
              {"[ 3/12] figures/overview.svg", "#aeb8c2"},
              {"warning: figures/costs.csv has no unit in column 4", "#e8b25c"},
              {"[11/12] index", "#aeb8c2"},
              {"[12/12] report.pdf", "#aeb8c2"},
              {"", "#fff"},
              {"Done in 2.4 s, 64 pages.", "#86cf86"},
              {"~/report $ git push", "#f2f4f6"},
              {"To ssh://git.example.org/report.git", "#aeb8c2"},
              {"   4b825dc..9ae1f02  main -> main", "#7fb4e6"}});
  return sheet.finished();
}

QImage mail() {
  Sheet sheet(QSize(1280, 800), QColor(0xffffff));
  sheet.fill(QRect(0, 0, 360, 800), QColor(0xf1f3f6));
  const char* const names[]{"Amira Haddad", "Print shop", "Jonas Weber", "Team calendar", "Amira Haddad", "Library"};
  for (int i = 0; i < 6; ++i) {
    const int top = 24 + i * 120;
    if (i == 0) sheet.fill(QRect(12, top - 8, 336, 108), QColor(0x2f6fd6), 10);
    sheet.setFont("Inter", 19, QFont::DemiBold);
    sheet.write(32, top + 28, QColor(i == 0 ? 0xffffff : 0x20242a), QString::fromLatin1(names[i]));
    sheet.fill(QRect(32, top + 46, 270, 9), QColor(i == 0 ? 0xa9c6f3 : 0xcdd3da), 4);
    sheet.fill(QRect(32, top + 66, 190, 9), QColor(i == 0 ? 0xa9c6f3 : 0xdbe0e5), 4);
  }
  sheet.setFont("Inter", 30, QFont::DemiBold);
  sheet.write(410, 80, QColor(0x16191d), QStringLiteral("Second draft, and the date for print"));
  sheet.setFont("Inter", 20);
  writeLines(sheet, 410, 150, 36,
             {{"Hello,", "#30353b"},
              {"", "#fff"},
              {"thank you for the draft. Two things are left for Thursday:", "#30353b"},
              {"who reads chapter three, and when the figures are due.", "#30353b"},
              {"The print shop needs the file by Friday, 27 November.", "#30353b"},
              {"", "#fff"},
              {"Amira", "#30353b"}});
  sheet.fill(QRect(410, 440, 400, 84), QColor(0xeef1f5), 12);
  sheet.setFont("Inter", 18, QFont::Medium);
  sheet.write(490, 490, QColor(0x30353b), QStringLiteral("report-draft-2.pdf  1.8 MB"));
  sheet.fill(QRect(432, 460, 36, 44), QColor(0xd65a4a), 5);
  return sheet.finished();
}

QImage table() {
  Sheet sheet(QSize(1440, 720), QColor(0xffffff));
  sheet.fill(QRect(0, 0, 1440, 72), QColor(0x1e7145));
  sheet.setFont("Inter", 22, QFont::DemiBold);
  sheet.write(28, 45, Qt::white, QStringLiteral("Costs 2026"));
  const char* const months[]{"", "January", "February", "March", "April", "May", "June", "Sum"};
  const char* const posts[]{"Rent", "Electricity", "Paper", "Printing", "Travel", "Web space", "Insurance", "Sum"};
  for (int column = 0; column < 8; ++column) {
    for (int row = 0; row < 9; ++row) {
      const QRect cell(column * 180, 72 + row * 72, 180, 72);
      if (row == 0 || column == 0) sheet.fill(cell, QColor(0xf0f4f1));
      sheet.painter().setBrush(Qt::NoBrush);
      sheet.painter().setPen(QColor(0xd5dbd7));
      sheet.painter().drawRect(cell);
      const bool isHead = row == 0 || column == 0 || row == 8 || column == 7;
      sheet.setFont("Inter", 20, isHead ? QFont::DemiBold : QFont::Normal);
      const QString text = row == 0 ? QString::fromLatin1(months[column])
                           : column == 0
                               ? QString::fromLatin1(posts[row - 1])
                               : QString::number((row * 137 + column * 59) % 900 + 40) + QStringLiteral(".00");
      sheet.painter().setPen(QColor(0x22282a));
      sheet.painter().drawText(cell.adjusted(16, 0, -16, 0),
                               static_cast<int>(Qt::AlignVCenter) | (row && column ? Qt::AlignRight : Qt::AlignLeft),
                               text);
    }
  }
  return sheet.finished();
}

QImage code() {
  Sheet sheet(QSize(1040, 900), QColor(0x22272e));
  sheet.fill(QRect(0, 0, 1040, 52), QColor(0x2d333b));
  sheet.fill(QRect(64, 8, 250, 44), QColor(0x22272e), 8);
  sheet.setFont("Inter", 18, QFont::Medium);
  sheet.write(90, 36, QColor(0xd7dee6), QStringLiteral("schedule.py"));
  sheet.setFont("DejaVu Sans Mono", 21);
  for (int line = 1; line <= 22; ++line) {
    sheet.write(22, 62 + line * 36, QColor(0x636e7b), QString::number(line).rightJustified(2));
  }
  writeLines(sheet, 84, 98, 36,
             {{"from datetime import date, timedelta", "#f0a35e"},
              {"", "#fff"},
              {"def working_days(start, end, holidays):", "#d2a8ff"},
              {"    \"\"\"Counts what is left until the print.\"\"\"", "#8bc48a"},
              {"    day = start", "#d7dee6"},
              {"    count = 0", "#d7dee6"},
              {"    while day <= end:", "#f0a35e"},
              {"        if day.weekday() < 5 and day not in holidays:", "#d7dee6"},
              {"            count += 1", "#d7dee6"},
              {"        day += timedelta(days=1)", "#d7dee6"},
              {"    return count", "#f0a35e"},
              {"", "#fff"},
              {"", "#fff"},
              {"if __name__ == \"__main__\":", "#f0a35e"},
              {"    left = working_days(date.today(), PRINT, [])", "#d7dee6"},
              {"    print(f\"{left} working days are left\")", "#7fb4e6"}});
  return sheet.finished();
}

QImage chart(bool isDark) {
  Sheet sheet(isDark ? QSize(1600, 620) : QSize(1200, 760), isDark ? QColor(0x14171c) : QColor(0xfafbfc));
  const QColor ink(isDark ? 0xe4e8ed : 0x20252b);
  const QColor line(isDark ? 0x2b323a : 0xdfe4e8);
  sheet.setFont("Inter", 28, QFont::DemiBold);
  sheet.write(48, 66, ink, isDark ? QStringLiteral("Load of the last day") : QStringLiteral("Readers per week"));
  const int bottom = sheet.size().height() - 70;
  sheet.painter().setPen(QPen(line, 2));
  for (int y = 130; y <= bottom; y += 90) sheet.painter().drawLine(48, y, sheet.size().width() - 48, y);
  if (!isDark) {
    for (int i = 0; i < 12; ++i) {
      const int height = static_cast<int>(140 + 26 * i + 90 * std::sin(i * 1.3));
      sheet.fill(QRect(70 + i * 92, bottom - height, 56, height), QColor(i == 11 ? 0xe07b39 : 0x4c83c3), 5);
    }
    return sheet.finished();
  }
  QPainterPath curve;
  for (int x = 48; x <= sheet.size().width() - 48; x += 4) {
    const double y = 350 - 110 * std::sin(x / 190.0) - 40 * std::sin(x / 37.0) - 16 * std::sin(x / 11.0);
    x == 48 ? curve.moveTo(x, y) : curve.lineTo(x, y);
  }
  sheet.painter().setBrush(Qt::NoBrush);
  sheet.painter().setPen(QPen(QColor(0x58c3a5), 4));
  sheet.painter().drawPath(curve);
  return sheet.finished();
}

QImage page() {
  Sheet sheet(QSize(620, 1400), QColor(0xfbf8f2));
  sheet.fill(QRect(0, 0, 620, 360), QColor(0x7e9aa6));
  sheet.fill(QRect(0, 240, 620, 120), QColor(0x5b7a5f));
  sheet.fill(QRect(420, 60, 90, 90), QColor(0xf3d9a0), 45);
  sheet.setFont("DejaVu Serif", 38, QFont::Bold);
  sheet.write(40, 430, QColor(0x2c2a26), QStringLiteral("A week by the lake"));
  for (int i = 0; i < 22; ++i) {
    const int width = i % 6 == 5 ? 260 : 540 - (i * 37) % 50;
    if (i % 6 != 5 || i < 20) sheet.fill(QRect(40, 480 + i * 38, width, 12), QColor(0xb9b2a5), 5);
  }
  return sheet.finished();
}

QImage message() {
  Sheet sheet(QSize(760, 300), QColor(0xf3f3f4));
  sheet.fill(QRect(40, 40, 72, 72), QColor(0xd9534a), 36);
  sheet.setFont("Inter", 44, QFont::Bold);
  sheet.write(69, 92, Qt::white, QStringLiteral("!"));
  sheet.setFont("Inter", 26, QFont::DemiBold);
  sheet.write(140, 74, QColor(0x1d1f22), QStringLiteral("The printer does not answer"));
  sheet.setFont("Inter", 21);
  sheet.write(140, 114, QColor(0x53565c), QStringLiteral("Check the cable, or choose another printer."));
  sheet.fill(QRect(520, 216, 200, 52), QColor(0x2f6fd6), 10);
  sheet.setFont("Inter", 21, QFont::DemiBold);
  sheet.write(574, 249, Qt::white, QStringLiteral("Try Again"));
  return sheet.finished();
}

}  // namespace

QImage paintedScreen(PaintedScreen kind) {
  switch (kind) {
    case PaintedScreen::terminal:
      return terminal();
    case PaintedScreen::mail:
      return mail();
    case PaintedScreen::table:
      return table();
    case PaintedScreen::code:
      return code();
    case PaintedScreen::chart:
      return chart(false);
    case PaintedScreen::darkChart:
      return chart(true);
    case PaintedScreen::page:
      return page();
    case PaintedScreen::message:
      return message();
  }
  return {};
}

}  // namespace quillmere
