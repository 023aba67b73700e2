#include "popup/PromptDetails.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include "support/Printing.h"

namespace quillmere {
namespace {

class PromptDetailsTest : public ::testing::Test {
 protected:
  PromptDetailsTest() {
    details.onNameChanged = [this] { ++nameChanges; };
    details.onAnalyze = [this] { ++analyses; };
    details.onNameRefused = [this](const QString& note) { notes += note; };
    show("/pictures/shot.png");
  }
  void show(const char* path) {
    content.item.url = FileURL::fromPath(path);
    details.show(content);
  }
  /// The labels that can be seen, from the top.
  std::vector<QLabel*> labels() const {
    std::vector<QLabel*> found;
    for (auto* label : details.findChildren<QLabel*>()) {
      if (label->isVisibleTo(&details)) found.push_back(label);
    }
    return found;
  }
  QLabel* saying(const QString& text) const {
    for (QLabel* label : labels()) {
      if (label->text() == text) return label;
    }
    return nullptr;
  }

  int nameChanges = 0;
  int analyses = 0;
  QStringList notes;
  CapturePromptContent content;
  PromptDetails details{nullptr};
};

TEST_F(PromptDetailsTest, TheExtensionStandsBesideTheNameAndIsNotSpoken) {
  QLabel* extension = saying(QStringLiteral(".png"));
  ASSERT_TRUE(extension);
  EXPECT_TRUE(QAccessible::queryAccessibleInterface(extension)->state().invisible);
  show("/pictures/shot.tar.JPEG");
  EXPECT_TRUE(saying(QStringLiteral(".JPEG")));
  show("/pictures/shot");
  EXPECT_FALSE(extension->isVisibleTo(&details));
}

TEST_F(PromptDetailsTest, ACaptionThatIsTooLongIsCutAndSpokenInFull) {
  QFont large = details.font();
  large.setPointSize(40);
  details.setFont(large);
  details.nameField().setText(QStringLiteral("///"));
  const QLabel* caption = labels().at(1);
  EXPECT_TRUE(caption->text().endsWith(QChar(0x2026))) << caption->text().toStdString();
  EXPECT_LE(caption->fontMetrics().horizontalAdvance(caption->text()), kPreviewWidth);
  EXPECT_EQ(caption->accessibleName(), nameCaption(QStringLiteral("///")));
}

TEST_F(PromptDetailsTest, TypingIsToldForEachLetter) {
  QTest::keyClicks(&details.nameField(), QStringLiteral("abc"));
  EXPECT_EQ(nameChanges, 3);
}

TEST_F(PromptDetailsTest, ANameThatIsRefusedIsToldOnceWhereItIsTyped) {
  const QString empty = nameCaption(QString());
  const QString unusable = nameCaption(QStringLiteral("/"));
  ASSERT_NE(empty, unusable);
  QLineEdit& field = details.nameField();
  field.setText(QStringLiteral("a"));
  field.setText(QString());
  EXPECT_EQ(field.accessibleDescription(), empty);
  EXPECT_EQ(notes, QStringList()) << "nobody typed it";
  field.setText(QStringLiteral("a"));
  EXPECT_TRUE(field.accessibleDescription().startsWith(QStringLiteral("Return saves")));

  details.window()->show();
  details.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&details));
  field.setFocus();
  QTest::keyClick(&field, Qt::Key_Backspace);
  EXPECT_EQ(notes, QStringList(empty));
  QTest::keyClicks(&field, QStringLiteral("//"));
  EXPECT_EQ(notes, QStringList({empty, unusable}));
  EXPECT_EQ(field.accessibleDescription(), unusable);
  QTest::keyClicks(&field, QStringLiteral("a"));
  QTest::keyClick(&field, Qt::Key_Backspace);
  EXPECT_EQ(notes, QStringList({empty, unusable, unusable})) << "it appeared anew";
}

TEST_F(PromptDetailsTest, WhoeverHasNoModelIsNotToldOnEveryCard) {
  const auto isTold = [this] {
    details.show(content);
    return details.description().isVisibleTo(&details);
  };
  EXPECT_TRUE(isTold()) << "no description yet";
  content.availability = AnalysisAvailability::unavailable;
  EXPECT_FALSE(isTold());
  content.item.imageDescription = "A page.";
  EXPECT_TRUE(isTold()) << "made while there was one";
}

TEST_F(PromptDetailsTest, WhatCannotBeReadIsNotBeingAnalyzed) {
  content.isAnalyzing = true;
  details.show(content);
  EXPECT_TRUE(saying(QStringLiteral("Analyzing screenshot…")));
  content.canReadImage = false;
  details.show(content);
  EXPECT_FALSE(saying(QStringLiteral("Analyzing screenshot…")));
}

TEST_F(PromptDetailsTest, AnotherAttemptIsAskedForFromItsButton) {
  QTest::mouseClick(&details.analysisButton(), Qt::LeftButton);
  EXPECT_EQ(analyses, 1);
}

}  // namespace
}  // namespace quillmere
