#include "popup/PromptTextActions.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QPushButton>
#include <map>

#include "controls/ActionButton.h"
#include "popup/PictureAction.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(PromptTextActions, SayWhatTheyDoAndDoIt) {
  PromptTextActions actions(nullptr);
  const auto controls = actions.controls();
  ASSERT_EQ(controls.size(), 2u);
  const auto& copyText = dynamic_cast<QPushButton&>(*controls[0]);
  const auto& share = dynamic_cast<QPushButton&>(*controls[1]);
  EXPECT_EQ(copyText.text(), QStringLiteral("Copy Text"));
  EXPECT_EQ(copyText.toolTip(), QStringLiteral("Copy the text in this screenshot"));
  EXPECT_EQ(share.text(), QStringLiteral("Share"));
  EXPECT_EQ(share.toolTip(), QStringLiteral("Share this screenshot"));
  std::map<PictureAction, const QWidget*> done;
  actions.onAction = [&](PictureAction action, const QWidget& button) { done[action] = &button; };
  for (QWidget* control : controls) QTest::mouseClick(control, Qt::LeftButton);
  EXPECT_EQ(done.at(PictureAction::copyText), &copyText);
  EXPECT_EQ(done.at(PictureAction::share), &share) << "the menu opens under its button";
}

TEST(PromptTextActions, TheOneThatIsUnderWayShowsIt) {
  PromptTextActions actions(nullptr);
  actions.setWorking(PictureAction::copyText, true);
  EXPECT_TRUE(dynamic_cast<ActionButton&>(*actions.controls()[0]).isWorking());
  EXPECT_FALSE(dynamic_cast<ActionButton&>(*actions.controls()[1]).isWorking());
}

}  // namespace
}  // namespace quillmere
