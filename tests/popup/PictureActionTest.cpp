#include "popup/PictureAction.h"

#include <gtest/gtest.h>
#include <QtWidgets/QPushButton>

#include "popup/PromptPreviewActions.h"
#include "popup/PromptTextActions.h"

namespace quillmere {
namespace {

/// The button that a screen reader calls by the action's name; none if it is not there.
QPushButton* buttonOf(const PictureActionTraits& traits, const QWidget& place) {
  for (auto* button : place.findChildren<QPushButton*>()) {
    if (button->accessibleName() == traits.name || button->text() == traits.name) return button;
  }
  return nullptr;
}

/// What was done after the button of each action was pressed.
template <typename Place>
std::vector<PictureAction> pressAll(Place& place) {
  std::vector<PictureAction> done;
  QWidget* pressed = nullptr;
  place.onAction = [&](PictureAction action, QWidget& button) {
    EXPECT_EQ(&button, pressed);
    done.push_back(action);
  };
  for (const PictureActionTraits& traits : pictureActions()) {
    QPushButton* button = buttonOf(traits, place);
    pressed = button;
    if (button) button->click();
  }
  return done;
}

std::vector<PictureAction> allActions() {
  std::vector<PictureAction> actions;
  for (const PictureActionTraits& traits : pictureActions()) actions.push_back(traits.action);
  return actions;
}

TEST(PictureAction, EachHasAButtonOnThePreview) {
  PromptPreviewActions place(nullptr);
  EXPECT_EQ(pressAll(place), allActions());
  EXPECT_EQ(place.controls().size(), allActions().size() + 1) << "and Extract Window";
}

TEST(PictureAction, EachHasAButtonInTheRowWithoutAPreview) {
  PromptTextActions place(nullptr);
  EXPECT_EQ(pressAll(place), allActions());
  EXPECT_EQ(place.controls().size(), allActions().size());
}

TEST(PictureAction, EachIsExplainedInBothPlaces) {
  const PromptPreviewActions preview(nullptr);
  const PromptTextActions row(nullptr);
  for (const PictureActionTraits& traits : pictureActions()) {
    const QPushButton* onPreview = buttonOf(traits, preview);
    const QPushButton* inRow = buttonOf(traits, row);
    ASSERT_TRUE(onPreview && inRow) << traits.name.toStdString();
    EXPECT_FALSE(onPreview->toolTip().isEmpty() || onPreview->accessibleDescription().isEmpty());
    EXPECT_FALSE(inRow->toolTip().isEmpty());
  }
}

}  // namespace
}  // namespace quillmere
