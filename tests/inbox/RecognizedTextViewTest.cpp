#include "inbox/RecognizedTextView.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "support/Printing.h"

namespace quillmere {
namespace {

class RecognizedTextViewTest : public ::testing::Test {
 protected:
  RecognizedTextViewTest() {
    view.resize(480, 300);
    view.onCopy = [this](const QString& text) { copied += text; };
  }
  RecognizedTextView view{nullptr};
  QStringList copied;
};

TEST_F(RecognizedTextViewTest, TheKeysForCopyingCopyTheSelection) {
  view.setText(QStringLiteral("one two\nthree"));
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(copied.isEmpty()) << "nothing is selected";
  view.selectAll();
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(copied, QStringList{QStringLiteral("one two\nthree")});
}

TEST_F(RecognizedTextViewTest, TextIsShownAsItIsAndCannotBeChanged) {
  view.setText(QStringLiteral("<b>bold</b>"));
  QTest::keyClicks(&view, QStringLiteral("typed"));
  EXPECT_EQ(view.toPlainText(), QStringLiteral("<b>bold</b>"));
}

TEST_F(RecognizedTextViewTest, HostileTextIsOnlyText) {
  const QString hostile = QStringLiteral("a\u202eb\u2066c") + QChar(0) + QStringLiteral("d\r\n") + QChar(0xfdd0) +
                          QChar(0xfffc) + QChar(0xd800) + QStringLiteral("\n") + QString(20000, QLatin1Char('x'));
  view.setText(hostile);
  view.grab();
  EXPECT_FALSE(view.toPlainText().contains(QChar(0)));
  EXPECT_TRUE(view.toPlainText().startsWith(QStringLiteral("a\u202eb\u2066cd\n")));
}

TEST_F(RecognizedTextViewTest, ALongLineIsShownInPartsAndCopiedAsOne) {
  for (const QString& line : {QStringLiteral("word ").repeated(2000), QString(9000, QLatin1Char('x')),
                              QLatin1Char('x') + QStringLiteral("😀").repeated(3000)}) {
    const QString text = line + QStringLiteral("\n\nthe end");
    view.setText(text);
    EXPECT_GT(view.document()->blockCount(), 3);
    view.selectAll();
    EXPECT_EQ(view.selectedText(), text);
    QTextCursor some = view.textCursor();
    some.setPosition(3990);
    some.setPosition(4010, QTextCursor::KeepAnchor);
    view.setTextCursor(some);
    EXPECT_FALSE(view.selectedText().contains(QLatin1Char('\n')));
  }
}

TEST_F(RecognizedTextViewTest, TheSameTextAgainLeavesTheSelection) {
  view.setText(QStringLiteral("words"));
  view.selectAll();
  view.setText(QStringLiteral("words"));
  EXPECT_TRUE(view.textCursor().hasSelection());
}

}  // namespace
}  // namespace quillmere
