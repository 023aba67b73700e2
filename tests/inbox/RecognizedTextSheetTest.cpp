#include "inbox/RecognizedTextSheet.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "inbox/RecognizedTextView.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

class RecognizedTextSheetTest : public ::testing::Test {
 protected:
  RecognizedTextSheetTest() {
    window.resize(1000, 800);
    window.show();
    sheet = std::make_unique<RecognizedTextSheet>(&window);
    sheet->onCopy = [this](const QString& text) { copied += text; };
  }
  bool says(const char* text) const {
    for (const auto* label : sheet->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text() == QString::fromUtf8(text)) return true;
    }
    return false;
  }
  QPushButton& button(const char* text) const {
    for (auto* found : sheet->findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text)) return *found;
    }
    throw std::out_of_range(text);
  }
  QWidget window;
  std::unique_ptr<RecognizedTextSheet> sheet;
  QStringList copied;
};

TEST_F(RecognizedTextSheetTest, TurnsFromReadingToTheTextWithoutClosing) {
  sheet->show(std::nullopt, true);
  sheet->open();
  EXPECT_TRUE(says("Recognized Text"));
  EXPECT_TRUE(says("Reading text…"));
  EXPECT_FALSE(button("Copy Text").isEnabled());
  sheet->show(QStringLiteral("words"), false);
  EXPECT_TRUE(sheet->isVisible());
  EXPECT_FALSE(says("Reading text…"));
  EXPECT_EQ(sheet->findChild<QPlainTextEdit*>()->toPlainText(), QStringLiteral("words"));
  EXPECT_TRUE(sheet->findChild<QPlainTextEdit*>()->isVisible());
  QTest::mouseClick(&button("Copy Text"), Qt::LeftButton);
  EXPECT_EQ(copied, QStringList{QStringLiteral("words")});
}

TEST_F(RecognizedTextSheetTest, WithoutTextItSaysSo) {
  for (const auto& text : {std::optional(QString()), std::optional<QString>()}) {
    sheet->show(text, false);
    sheet->open();
    EXPECT_TRUE(says("No Text Found"));
    EXPECT_TRUE(says("Quillmere didn’t recognize any text in this screenshot."));
    EXPECT_FALSE(button("Copy Text").isEnabled());
  }
}

TEST_F(RecognizedTextSheetTest, ReturnAndEscapeCloseItWhereverTheKeyboardIs) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    sheet->show(QStringLiteral("words"), false);
    sheet->open();
    EXPECT_TRUE(sheet->findChild<QPlainTextEdit*>()->hasFocus() ||
                sheet->focusWidget() == sheet->findChild<QPlainTextEdit*>());
    QTest::keyClick(sheet->findChild<QPlainTextEdit*>(), key);
    EXPECT_FALSE(sheet->isVisible()) << key;
  }
  EXPECT_TRUE(button("Done").isDefault());
}

TEST_F(RecognizedTextSheetTest, ItsSizeGoesByTheWindowsAndNeverBelowTheLeast) {
  sheet->show(QStringLiteral("words"), false);
  sheet->open();
  const QSize before = sheet->size();
  window.resize(1200, 1000);
  QCoreApplication::processEvents();
  EXPECT_GT(sheet->width(), before.width());
  window.resize(300, 200);
  QCoreApplication::processEvents();
  EXPECT_GE(sheet->width(), 480);
  EXPECT_GE(sheet->height(), 360);
}

}  // namespace
}  // namespace quillmere
