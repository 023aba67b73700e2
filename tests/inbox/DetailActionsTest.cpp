#include "inbox/DetailActions.h"

#include <QtTest/QTest>

#include "controls/ActionButton.h"
#include "inbox/DetailFixture.h"
#include "inbox/ScreenshotActionsMenu.h"

namespace quillmere {
namespace {

class DetailActionsTest : public testing::DetailFixture {
 protected:
  ActionButton* action(const char* text) const { return dynamic_cast<ActionButton*>(button(actions, text)); }
  DetailActions actions{*model, *presentation, nullptr};
};

TEST_F(DetailActionsTest, TheEditorOpensWithOrWithoutWindows) {
  const ScreenshotActionsMenu menu({id}, *model, *presentation);
  actions.show(id);
  for (const char* text : {"Extract Text", "Extract Window…", "Crop…"}) ASSERT_TRUE(action(text)) << text;
  EXPECT_TRUE(menu.isEnabled(ScreenshotCommand::crop));
  EXPECT_TRUE(menu.isEnabled(ScreenshotCommand::extractWindow));
  QTest::mouseClick(action("Extract Window…"), Qt::LeftButton);
  ASSERT_TRUE(*presentation->editor);
  EXPECT_TRUE((*presentation->editor)->detectWindow);
  presentation->closeEditor();
  QTest::mouseClick(action("Crop…"), Qt::LeftButton);
  EXPECT_FALSE((*presentation->editor)->detectWindow);
}

TEST_F(DetailActionsTest, AllOfThemNeedThePicture) {
  evict();
  actions.show(id);
  for (const char* text : {"Extract Text", "Extract Window…", "Crop…"}) EXPECT_FALSE(action(text)->isEnabled()) << text;
}

TEST_F(DetailActionsTest, TheButtonShowsThatTextIsBeingRead) {
  analyzer.holdsReadings = true;
  actions.show(id);
  QTest::mouseClick(action("Extract Text"), Qt::LeftButton);
  actions.show(id);
  EXPECT_TRUE(action("Extract Text")->isWorking());
  executor.drain();
  ASSERT_FALSE(analyzer.readings.empty());
  analyzer.answer(analyzer.readings.back(), std::optional(QStringLiteral("words")));
  executor.drain();
  actions.show(id);
  EXPECT_FALSE(action("Extract Text")->isWorking());
  EXPECT_TRUE(*presentation->recognizedText);
}

}  // namespace
}  // namespace quillmere
