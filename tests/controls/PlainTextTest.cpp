#include "controls/PlainText.h"

#include <gtest/gtest.h>
#include <QtGui/QTextDocumentFragment>

#include "support/Printing.h"

namespace quillmere {
namespace {

const QString kHostile = QStringLiteral("<img src='/dev/zero'> <b>a</b> & b");

TEST(PlainLabelTest, ShowsMarkupAsItIs) {
  PlainLabel label(kHostile);
  const PlainLabel later;
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  EXPECT_EQ(later.textFormat(), Qt::PlainText);
  QLabel plain;
  plain.setTextFormat(Qt::PlainText);
  plain.setText(kHostile);
  EXPECT_EQ(label.sizeHint(), plain.sizeHint());
}

TEST(PlainTextTest, AToolTipSaysWhatItWasGiven) {
  QWidget widget;
  setPlainToolTip(widget, kHostile);
  EXPECT_EQ(QTextDocumentFragment::fromHtml(widget.toolTip()).toPlainText(), kHostile);
  EXPECT_TRUE(Qt::mightBeRichText(widget.toolTip())) << "read as markup in any case, whatever the text";
  setPlainToolTip(widget, QStringLiteral("/home/a & b"));
  EXPECT_EQ(QTextDocumentFragment::fromHtml(widget.toolTip()).toPlainText(), QStringLiteral("/home/a & b"));
  setPlainToolTip(widget, {});
  EXPECT_EQ(widget.toolTip(), QString());
}

TEST(PlainText, LongWordsMayBreakAndKeepEveryLetter) {
  EXPECT_EQ(breakable(QStringLiteral("Screenshot from today.png")), QStringLiteral("Screenshot from today.png"));
  const QChar gap(0x200b);
  EXPECT_EQ(breakable(QStringLiteral("of_the")), QStringLiteral("of_") + gap + QStringLiteral("the"));
  const QString name = QString(100, QLatin1Char('n'));
  QString broken = breakable(name);
  EXPECT_GE(broken.count(gap), 3);
  EXPECT_EQ(broken.remove(gap), name);
  const QString faces = QStringLiteral("😀").repeated(40);
  EXPECT_FALSE(breakable(faces).contains(QChar(0xd83d) + QString(gap))) << "no letter is cut in two";
}

}  // namespace
}  // namespace quillmere
