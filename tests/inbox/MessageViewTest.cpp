#include "inbox/MessageView.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

MessageView::Content content(const QString& action) {
  return {QStringLiteral("viewfinder"), QStringLiteral("No Screenshots Yet"),
          QStringLiteral("Take a screenshot, and it will appear here. ").repeated(6), action};
}

TEST(MessageView, TellsATitleAndASentenceOfWhichNoLineIsCut) {
  MessageView view(content({}), nullptr);
  view.resize(600, 600);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  const auto labels = view.findChildren<QLabel*>();
  ASSERT_EQ(labels.size(), 2);
  EXPECT_EQ(labels[0]->text(), QStringLiteral("No Screenshots Yet"));
  EXPECT_LT(labels[0]->y(), labels[1]->y());
  EXPECT_EQ(labels[1]->width(), 360);
  EXPECT_EQ(labels[1]->height(), labels[1]->heightForWidth(360)) << "and the room around it stays outside";
  EXPECT_EQ(labels[1]->y() - labels[0]->geometry().bottom() - 1, 8);
}

TEST(MessageView, GrownWideItsLinesAreAsCloseAsBefore) {
  QWidget window;
  // A child begins small.
  MessageView view(content({}), &window);
  view.resize(600, 600);
  window.show();
  const auto* title = view.findChildren<QLabel*>().first();
  EXPECT_LT(title->height(), 2 * QFontMetrics(title->font()).height()) << "one line, with no room below it";
}

TEST(MessageView, HasAButtonOnlyWhereThereIsSomethingToDo) {
  EXPECT_FALSE(MessageView(content({}), nullptr).findChild<QPushButton*>());
  MessageView view(content(QStringLiteral("Choose Screenshot Folder…")), nullptr);
  auto* button = view.findChild<QPushButton*>();
  ASSERT_TRUE(button);
  EXPECT_EQ(button->text(), QStringLiteral("Choose Screenshot Folder…"));
  EXPECT_TRUE(button->isDefault()) << "Return does it";
  int actions = 0;
  view.onAction = [&] { ++actions; };
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(actions, 1);
}

}  // namespace
}  // namespace quillmere
