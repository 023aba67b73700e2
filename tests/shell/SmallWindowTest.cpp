#include "shell/SmallWindow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QVBoxLayout>

#include "controls/PlainText.h"

namespace quillmere {
namespace {

class Lines final : public SmallWindow {
 public:
  explicit Lines(int letters) : SmallWindow(QStringLiteral("Lines"), letters) {
    auto* column = new QVBoxLayout(this);
    text->setWordWrap(true);
    column->addWidget(text);
  }
  PlainLabel* text = new PlainLabel(QStringLiteral("word ").repeated(40), this);
};

TEST(SmallWindowTest, FewerLettersInALineAreMoreLines) {
  Lines wide(80);
  Lines narrow(40);
  wide.show();
  narrow.show();
  EXPECT_GT(wide.width(), narrow.width());
  EXPECT_LT(wide.height(), narrow.height());
}

TEST(SmallWindowTest, WhatIsAddedHasRoom) {
  Lines window(40);
  window.show();
  const int before = window.height();
  window.text->setText(window.text->text().repeated(3));
  QApplication::processEvents();
  EXPECT_GT(window.height(), 2 * before);
  EXPECT_EQ(window.minimumSize(), window.maximumSize());
}

TEST(SmallWindowTest, EscapeClosesIt) {
  Lines window(40);
  window.show();
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
}

TEST(SmallWindowTest, TheIconFillsItsPlace) {
  QWidget window;
  ApplicationIconView icon(64, &window);
  EXPECT_EQ(icon.size(), QSize(64, 64));
  const QImage drawn = icon.grab().toImage();
  EXPECT_NE(drawn.pixelColor(32, 32), drawn.pixelColor(0, 0));
}

}  // namespace
}  // namespace quillmere
