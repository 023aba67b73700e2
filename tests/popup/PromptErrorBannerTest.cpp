#include "popup/PromptErrorBanner.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "support/Printing.h"
#include "support/ToldToReaders.h"

namespace quillmere {
namespace {

class PromptErrorBannerTest : public ::testing::Test {
 protected:
  PromptErrorBannerTest() { column.addWidget(&banner); }
  void show(const QString& title, const QString& message) { banner.show({UUID(), title, message}); }
  /// As the card is measured, in the turn of the loop in which it changed.
  int height() {
    column.activate();
    return column.heightForWidth(408);
  }
  QWidget card;
  QVBoxLayout column{&card};
  PromptErrorBanner banner{&card};
};

TEST_F(PromptErrorBannerTest, AFileNameInItIsTextAndNothingElse) {
  show(QStringLiteral("Couldn’t Move “<i>1</i>.png”"), QStringLiteral("<b>2</b>.png is there."));
  const auto labels = banner.findChildren<QLabel*>();
  ASSERT_EQ(labels.size(), 2);
  EXPECT_EQ(labels[0]->text(), QStringLiteral("Couldn’t Move “<i>1</i>.png”"));
  EXPECT_EQ(labels[1]->text(), QStringLiteral("<b>2</b>.png is there."));
  for (const QLabel* label : labels) EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(PromptErrorBannerTest, IsAsHighAsItsTextsAtOnce) {
  show(QStringLiteral("Title"), QStringLiteral("Short."));
  const int low = height();
  show(QStringLiteral("Title"), QStringLiteral("A long message. ").repeated(20));
  EXPECT_GT(height(), low + 2 * banner.fontMetrics().height());
}

TEST_F(PromptErrorBannerTest, IsAnAlertOfItsTexts) {
  show(QStringLiteral("Couldn’t Move to Trash"), QStringLiteral("It is still there."));
  QAccessibleInterface& heard = *QAccessible::queryAccessibleInterface(&banner);
  EXPECT_EQ(heard.role(), QAccessible::AlertMessage);
  EXPECT_EQ(heard.text(QAccessible::Name), QStringLiteral("Couldn’t Move to Trash"));
  EXPECT_EQ(heard.text(QAccessible::Description), QStringLiteral("It is still there."));
  EXPECT_GT(heard.childCount(), 0) << "its button can be reached";
}

TEST_F(PromptErrorBannerTest, AlertsOnceForEachErrorThatAppears) {
  testing::ToldToReaders told;
  const auto alerts = [&] { return told.take(QAccessible::Alert, banner).size(); };
  const ScopedError first{UUID::createUuid(), QStringLiteral("Title"), QStringLiteral("Message.")};
  banner.show(first);
  EXPECT_EQ(alerts(), 0u) << "nobody sees it";
  card.show();
  EXPECT_EQ(alerts(), 1u);
  banner.show(first);
  EXPECT_EQ(alerts(), 0u) << "the same as before";
  banner.show({UUID::createUuid(), QStringLiteral("Title"), QStringLiteral("Message.")});
  EXPECT_EQ(alerts(), 1u) << "another one in its place";
  banner.hide();
  EXPECT_EQ(alerts(), 0u);
  static_cast<QWidget&>(banner).show();
  EXPECT_EQ(alerts(), 1u);
}

TEST_F(PromptErrorBannerTest, CanBeDismissed) {
  int dismissed = 0;
  banner.onDismiss = [&] { ++dismissed; };
  EXPECT_EQ(dynamic_cast<QPushButton&>(*banner.control()).text(), QStringLiteral("Dismiss"));
  QTest::mouseClick(banner.control(), Qt::LeftButton);
  EXPECT_EQ(dismissed, 1);
}

}  // namespace
}  // namespace quillmere
