#include "editor/ReplaceQuestion.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "controls/ActionButton.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

class ReplaceQuestionTest : public ::testing::Test {
 protected:
  ReplaceQuestionTest() {
    sheet.show();
    question.onAnswer = [this](bool isConfirmed) {
      EXPECT_EQ(question.alert(), nullptr);
      answers.push_back(isConfirmed);
    };
  }
  QWidget sheet;
  ReplaceQuestion question{QStringLiteral("Shot 1.png"), &sheet};
  std::vector<bool> answers;
};

TEST_F(ReplaceQuestionTest, SaysWhatBecomesOfTheFileAndHowToHaveItBack) {
  EXPECT_EQ(question.alert(), nullptr);
  question.setAsked(true);
  ASSERT_NE(question.alert(), nullptr);
  const AlertContent& content = question.alert()->content();
  EXPECT_EQ(content.heading, QString::fromUtf8("Replace the Original Screenshot?"));
  EXPECT_EQ(content.message,
            QString::fromUtf8("“Shot 1.png” moves to Trash, and the cropped image takes its name. You can put the "
                              "original back from Trash in your file manager."));
  EXPECT_EQ(content.action, QStringLiteral("Replace Original"));
  EXPECT_EQ(content.safe, QStringLiteral("Cancel"));
  EXPECT_TRUE(content.isDestructive);
}

TEST_F(ReplaceQuestionTest, IsAnsweredOnceAndCanBeAskedAgain) {
  question.setAsked(true);
  const Alert* first = question.alert();
  question.setAsked(true);
  EXPECT_EQ(question.alert(), first);
  QTest::mouseClick(question.alert()->actionButton(), Qt::LeftButton);
  question.setAsked(true);
  QTest::mouseClick(&question.alert()->safeButton(), Qt::LeftButton);
  EXPECT_EQ(answers, (std::vector{true, false}));
}

TEST_F(ReplaceQuestionTest, TakenBackItHasNoAnswer) {
  question.setAsked(true);
  const QPointer<Alert> alert = question.alert();
  question.setAsked(false);
  question.setAsked(false);
  EXPECT_EQ(question.alert(), nullptr);
  EXPECT_FALSE(alert && alert->isVisible());
  EXPECT_TRUE(answers.empty());
}

}  // namespace
}  // namespace quillmere
