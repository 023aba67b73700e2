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

}  // namespace
}  // namespace quillmere
