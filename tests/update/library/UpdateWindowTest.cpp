#include "update/library/UpdateWindow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>

#include "controls/ActionButton.h"

namespace quillmere {
namespace {

using Answer = UpdateWindows::Answer;

class UpdateWindowTest : public ::testing::Test {
 protected:
  static UpdateNotice question() {
    return {.kind = UpdateNotice::Kind::found,
            .heading = QStringLiteral("A <b>New</b> Version"),
            .message = QStringLiteral("<img src='x'> is available."),
            .notes = QStringLiteral("<b>Faster</b>\nand smaller"),
            .safe = QStringLiteral("Not Now"),
            .action = QStringLiteral("Download")};
  }
  UpdateWindow& shown(const UpdateNotice& notice) {
    window = std::make_unique<UpdateWindow>(notice, [this](Answer answer) { answers.push_back(answer); });
    window->show();
    return *window;
  }

  std::vector<Answer> answers;
  std::unique_ptr<UpdateWindow> window;
};

TEST_F(UpdateWindowTest, WhatTheMakerWritesIsTextAndNoMarkup) {
  shown(question());
  const auto* notes = window->findChild<QPlainTextEdit*>();
  ASSERT_TRUE(notes);
  EXPECT_EQ(notes->toPlainText(), question().notes);
  EXPECT_TRUE(notes->isReadOnly());
  for (const QLabel* label : window->findChildren<QLabel*>()) {
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
  }
}

TEST_F(UpdateWindowTest, AnswersByItsButtonsOnceOnly) {
  shown(question());
  window->actionButton()->click();
  window->safeButton()->click();
  EXPECT_EQ(answers, std::vector{Answer::action});
  shown(question()).safeButton()->click();
  EXPECT_EQ(answers.back(), Answer::safe);
}

TEST_F(UpdateWindowTest, ReturnEscapeAndClosingAreTheSafeAnswer) {
  QTest::keyClick(&shown(question()), Qt::Key_Return);
  QTest::keyClick(&shown(question()), Qt::Key_Escape);
  QTest::keyClick(shown(question()).actionButton(), Qt::Key_Return);
  shown(question()).close();
  EXPECT_EQ(answers, (std::vector{Answer::safe, Answer::safe, Answer::safe, Answer::safe}));
  QTest::keyClick(shown(question()).actionButton(), Qt::Key_Space);
  EXPECT_EQ(answers.back(), Answer::action);
}

TEST_F(UpdateWindowTest, WhatCannotBeStoppedStays) {
  UpdateNotice notice = question();
  notice.kind = UpdateNotice::Kind::installing;
  notice.safe = notice.action = QString();
  shown(notice);
  EXPECT_FALSE(window->safeButton());
  QTest::keyClick(window.get(), Qt::Key_Escape);
  QTest::keyClick(window.get(), Qt::Key_Return);
  window->close();
  EXPECT_TRUE(window->isVisible());
  EXPECT_TRUE(answers.empty());
}

TEST_F(UpdateWindowTest, ShowsHowFarItIsAlsoForMoreBytesThanABarCounts) {
  UpdateNotice notice = question();
  notice.kind = UpdateNotice::Kind::downloading;
  shown(notice);
  const auto* bar = window->findChild<QProgressBar*>();
  ASSERT_TRUE(bar);
  EXPECT_EQ(bar->maximum(), 0);  // nobody knows yet
  window->setProgress(qint64{5} << 32, qint64{10} << 32);
  EXPECT_EQ(bar->value() * 2, bar->maximum());
  window->setProgress(11, 10);
  EXPECT_EQ(bar->value(), bar->maximum());
  shown(question()).setProgress(1, 2);
  EXPECT_FALSE(window->findChild<QProgressBar*>());
}

TEST_F(UpdateWindowTest, WithoutNotesThereIsNoField) {
  UpdateNotice notice = question();
  notice.notes.clear();
  EXPECT_FALSE(shown(notice).findChild<QPlainTextEdit*>());
}

}  // namespace
}  // namespace quillmere
