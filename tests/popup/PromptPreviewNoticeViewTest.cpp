#include "popup/PromptPreviewNoticeView.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtWidgets/QApplication>

#include "controls/AppearanceStyle.h"
#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

/// How long a notice stays, and that one gives way to the next, is asked of the card.
class PromptPreviewNoticeViewTest : public ::testing::Test {
 protected:
  PromptPreviewNoticeViewTest() {
    style.setMotionReduced(true);
    view->setStyle(&style);
    view->onVisibilityChanged = [this] { ++changes; };
  }
  bool isShown() const { return view->isVisibleTo(&card); }

  ManualExecutor executor;
  AppearanceStyle style;
  QWidget card;
  std::unique_ptr<PromptPreviewNoticeView> view = std::make_unique<PromptPreviewNoticeView>(executor, &card);
  int changes = 0;
};

TEST_F(PromptPreviewNoticeViewTest, ComesAndGoesAndTellsOfBoth) {
  EXPECT_FALSE(isShown());
  view->show(PromptPreviewNotice::textCopied);
  EXPECT_TRUE(isShown());
  view->show(PromptPreviewNotice::noText);
  EXPECT_EQ(changes, 1) << "it was there already";
  executor.advance(seconds(2));
  EXPECT_FALSE(isShown()) << "at once, where less motion is wanted";
  EXPECT_EQ(changes, 2);
}

TEST_F(PromptPreviewNoticeViewTest, FadesWhereThingsMayMove) {
  style.setMotionReduced(false);
  view->show(PromptPreviewNotice::textCopied);
  executor.advance(seconds(2));
  EXPECT_EQ(view->notice(), std::nullopt);
  EXPECT_TRUE(isShown()) << "it is going";
  EXPECT_TRUE(testing::runLoopUntil([this] { return !isShown(); }));
  EXPECT_EQ(changes, 2);
}

TEST_F(PromptPreviewNoticeViewTest, WhatItWasAboutMayBeGoneSooner) {
  view->clear();
  EXPECT_EQ(changes, 0);
  view->show(PromptPreviewNotice::textCopied);
  view->clear();
  EXPECT_EQ(view->notice(), std::nullopt);
  EXPECT_FALSE(isShown());
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(PromptPreviewNoticeViewTest, MayBeGoneBeforeItsTime) {
  view->show(PromptPreviewNotice::textCopied);
  view.reset();
  EXPECT_EQ(executor.pendingDelays(), 0u);
}

TEST_F(PromptPreviewNoticeViewTest, IsATextOfItsOwnWidth) {
  int narrowest = INT_MAX, widest = 0;
  for (const auto notice : {PromptPreviewNotice::textCopied, PromptPreviewNotice::noText, PromptPreviewNotice::noWindow,
                            PromptPreviewNotice::alreadyWindow}) {
    view->show(notice);
    EXPECT_EQ(view->accessibleName(), text(notice));
    EXPECT_GT(view->sizeHint().width(), view->fontMetrics().horizontalAdvance(text(notice)));
    narrowest = std::min(narrowest, view->sizeHint().width());
    widest = std::max(widest, view->sizeHint().width());
  }
  EXPECT_LT(narrowest, widest);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(view.get())->role(), QAccessible::StaticText);
}

}  // namespace
}  // namespace quillmere
