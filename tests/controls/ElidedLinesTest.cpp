#include "controls/ElidedLines.h"

#include <gtest/gtest.h>
#include <QtGui/QFontMetrics>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

constexpr int kWidth = 200;

int linesOf(const QString& text) {
  const QFontMetrics metrics{QFont()};
  const QRect needed = metrics.boundingRect(QRect(0, 0, kWidth, 10000), Qt::TextWordWrap, text);
  return (needed.height() + metrics.lineSpacing() / 2) / metrics.lineSpacing();
}

TEST(ElidedLinesTest, ATextThatFitsStaysAsItIs) {
  const QString text = QStringLiteral("A short one.");
  EXPECT_EQ(elidedLines(text, QFont(), kWidth, 3), text);
  EXPECT_EQ(elidedLines({}, QFont(), kWidth, 3), QString());
}

TEST(ElidedLinesTest, ALongerOneFillsItsLinesAndEndsInAnEllipsis) {
  const QString text = QStringLiteral("several words that go on ").repeated(20);
  const QString shown = elidedLines(text, QFont(), kWidth, 3);
  EXPECT_TRUE(shown.endsWith(QChar(0x2026)));
  EXPECT_TRUE(text.startsWith(shown.chopped(1)));
  EXPECT_EQ(linesOf(shown), 3) << shown.toStdString();
}

TEST(ElidedLinesTest, AWordWithoutEndIsCutToo) {
  const QString shown = elidedLines(QString(1000, QLatin1Char('w')), QFont(), kWidth, 2);
  EXPECT_TRUE(shown.endsWith(QChar(0x2026)));
  EXPECT_LT(shown.size(), 100);
}

TEST(ElidedLinesTest, LinesOfTheTextCount) {
  const QString shown = elidedLines(QStringLiteral("a\nb\nc\nd"), QFont(), kWidth, 3);
  EXPECT_EQ(shown, QStringLiteral("a\nb\nc") + QChar(0x2026));
}

}  // namespace
}  // namespace quillmere
