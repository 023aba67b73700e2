#include "editor/CropCanvasAccessible.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>

#include "editor/CropCanvas.h"
#include "foundation/ManualExecutor.h"
#include "support/ToldToReaders.h"

namespace quillmere::testing {
namespace {

constexpr QSize kPicture(800, 600);

class CropCanvasAccessibleTest : public ::testing::Test {
 protected:
  CropCanvasAccessibleTest() {
    QImage picture(kPicture, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    canvas.resize(400, 300);
    canvas.setPicture(picture, kPicture);
    canvas.show();
  }
  void select(const QRect& rect) {
    history.change([&](CropSelection& selection) { selection.setByHand(rect); });
    canvas.followHistory();
  }
  QAccessibleInterface& interface() { return *QAccessible::queryAccessibleInterface(&canvas); }
  QAccessibleActionInterface& actions() { return *interface().actionInterface(); }

  ManualExecutor executor;
  CropHistory history{CropSelection(kPicture)};
  CropCanvas canvas{executor, history, nullptr};
};

TEST_F(CropCanvasAccessibleTest, IsAGraphicWithANameAndAHint) {
  EXPECT_EQ(interface().role(), QAccessible::Graphic);
  EXPECT_EQ(interface().text(QAccessible::Name), QStringLiteral("Screenshot preview"));
  EXPECT_EQ(interface().text(QAccessible::Description),
            QStringLiteral("Use the arrow keys to move the selection. Hold Shift to move 10 pixels at a time. Hold Alt "
                           "to change its size."));
  EXPECT_TRUE(interface().state().focusable);
}

TEST_F(CropCanvasAccessibleTest, ItsValueIsTheSelection) {
  EXPECT_EQ(interface().text(QAccessible::Value), QStringLiteral("Nothing is selected."));
  select({12, 34, 56, 78});
  const auto value = QStringLiteral("X 12, Y 34, width 56, height 78, in pixels");
  EXPECT_EQ(interface().text(QAccessible::Value), value);
  auto* text = interface().textInterface();
  ASSERT_NE(text, nullptr) << "a bus has no values that are no numbers";
  EXPECT_EQ(text->text(0, text->characterCount()), value);
  EXPECT_EQ(text->text(0, -1), value);
}

TEST_F(CropCanvasAccessibleTest, ItsActionsMoveTheSelectionByTenPixels) {
  const auto up = QStringLiteral("Move Selection Up");
  const auto down = QStringLiteral("Move Selection Down");
  EXPECT_FALSE(actions().actionNames().contains(up)) << "nothing is selected";
  select({12, 34, 56, 78});
  int changes = 0;
  canvas.onChanged = [&] { ++changes; };
  EXPECT_TRUE(actions().actionNames().contains(up));
  EXPECT_TRUE(actions().actionNames().contains(down));
  EXPECT_EQ(actions().localizedActionName(up), up);
  actions().doAction(down);
  EXPECT_EQ(history.current().selection(), QRect(12, 44, 56, 78));
  actions().doAction(up);
  actions().doAction(up);
  EXPECT_EQ(history.current().selection(), QRect(12, 24, 56, 78));
  EXPECT_EQ(changes, 3);
  history.undo();
  EXPECT_EQ(history.current().selection(), QRect(12, 34, 56, 78)) << "each is a step";
}

TEST_F(CropCanvasAccessibleTest, LockedItOffersNoActions) {
  select({12, 34, 56, 78});
  canvas.setLocked(true);
  EXPECT_FALSE(actions().actionNames().contains(QStringLiteral("Move Selection Up")));
  actions().doAction(QStringLiteral("Move Selection Up"));
  EXPECT_EQ(history.current().selection(), QRect(12, 34, 56, 78));
}

TEST_F(CropCanvasAccessibleTest, ReadersAreToldOfEachChangeOnce) {
  ToldToReaders told;
  select({12, 34, 56, 78});
  EXPECT_EQ(told.take(QAccessible::ValueChanged, canvas).size(), 1U);
  canvas.followHistory();
  EXPECT_EQ(told.take(QAccessible::ValueChanged, canvas).size(), 0U);
  canvas.moveSelection(1, 0);
  EXPECT_EQ(told.take(QAccessible::ValueChanged, canvas).size(), 1U);
}

}  // namespace
}  // namespace quillmere::testing
