#include "popup/PromptErrorBanner.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "support/Printing.h"

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

TEST_F(PromptErrorBannerTest, CanBeDismissed) {
  int dismissed = 0;
  banner.onDismiss = [&] { ++dismissed; };
  EXPECT_EQ(dynamic_cast<QPushButton&>(*banner.control()).text(), QStringLiteral("Dismiss"));
  QTest::mouseClick(banner.control(), Qt::LeftButton);
  EXPECT_EQ(dismissed, 1);
}

}  // namespace
}  // namespace quillmere
