#include "popup/PromptPreviewActions.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <map>

#include "popup/PreviewButton.h"

namespace quillmere {
namespace {

class PromptPreviewActionsTest : public ::testing::Test {
 protected:
  PromptPreviewActionsTest() { actions.resize(actions.sizeHint()); }
  PreviewButton& button(size_t place) const { return dynamic_cast<PreviewButton&>(*actions.controls().at(place)); }
  void show(const std::optional<PromptWindowExtraction::Phase>& phase) {
    CapturePromptContent content;
    content.windowExtraction = phase;
    actions.show(content);
  }
  QWidget card;
  PromptPreviewActions actions{&card};
};

TEST_F(PromptPreviewActionsTest, EachButtonDoesItsOwn) {
  int extractions = 0;
  std::map<PictureAction, const QWidget*> done;
  actions.onExtract = [&] { ++extractions; };
  actions.onAction = [&](PictureAction action, const QWidget& pressed) { done[action] = &pressed; };
  for (QWidget* control : actions.controls()) QTest::mouseClick(control, Qt::LeftButton);
  EXPECT_EQ(extractions, 1);
  EXPECT_EQ(done.at(PictureAction::copyText), actions.controls().at(1));
  EXPECT_EQ(done.at(PictureAction::share), actions.controls().at(2)) << "the menu opens under its button";
}

TEST_F(PromptPreviewActionsTest, OnlyExtractWindowIsSomethingToBeTurnedOn) {
  const auto state = [this](size_t place) {
    return QAccessible::queryAccessibleInterface(actions.controls().at(place))->state();
  };
  EXPECT_TRUE(state(0).checkable);
  EXPECT_FALSE(state(0).checked);
  show(PromptWindowExtraction::Extracted{QRectF(0, 0, 9, 9)});
  EXPECT_TRUE(state(0).checked);
  show(std::nullopt);
  EXPECT_FALSE(state(0).checked);
  for (const size_t place : {1u, 2u}) EXPECT_FALSE(state(place).checkable) << place;
}

TEST_F(PromptPreviewActionsTest, ExtractWindowTellsHowFarItIs) {
  const QRectF window(0, 0, 9, 9);
  struct Row {
    const char* phase;
    std::optional<PromptWindowExtraction::Phase> value;
    bool isOn, isWorking, canBePressed;
  };
  for (const Row& row : {Row{"not asked for", std::nullopt, false, false, true},
                         Row{"sought", PromptWindowExtraction::Detecting(), true, true, true},
                         Row{"found", PromptWindowExtraction::Extracted{window}, true, false, true},
                         Row{"being saved", PromptWindowExtraction::Saving{window}, true, true, false}}) {
    show(row.value);
    EXPECT_EQ(button(0).isChecked(), row.isOn) << row.phase;
    EXPECT_EQ(button(0).isWorking(), row.isWorking) << row.phase;
    EXPECT_EQ(button(0).isEnabled(), row.canBePressed) << row.phase;
  }
}

TEST_F(PromptPreviewActionsTest, CopyingTextWorksByItself) {
  actions.setWorking(PictureAction::copyText, true);
  EXPECT_TRUE(button(1).isWorking());
  show(std::nullopt);
  EXPECT_TRUE(button(1).isWorking()) << "whatever else changes on the card";
  EXPECT_FALSE(button(0).isWorking());
}

TEST_F(PromptPreviewActionsTest, WithAPictureThatCannotBeReadThereIsNothingToDo) {
  CapturePromptContent content;
  content.canReadImage = false;
  actions.show(content);
  EXPECT_FALSE(actions.isVisibleTo(&card));
  actions.show({});
  EXPECT_TRUE(actions.isVisibleTo(&card));
}

}  // namespace
}  // namespace quillmere
