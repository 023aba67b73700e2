#include "update/library/LiveUpdateWindows.h"

#include <gtest/gtest.h>
#include <QtWidgets/QApplication>

#include "controls/ActionButton.h"
#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

class LiveUpdateWindowsTest : public ::testing::Test {
 protected:
  static std::vector<UpdateWindow*> shown() {
    std::vector<UpdateWindow*> found;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* window = dynamic_cast<UpdateWindow*>(widget);
      if (window && window->isVisible()) found.push_back(window);
    }
    return found;
  }
  void show(const UpdateNotice& notice) {
    windows->show(notice, [this](UpdateWindows::Answer) {
      ++answers;
      windows->close();
    });
  }

  ManualExecutor executor;
  int answers = 0;
  std::unique_ptr<LiveUpdateWindows> windows = std::make_unique<LiveUpdateWindows>(executor);
};

TEST_F(LiveUpdateWindowsTest, ShowsOneAtATime) {
  show(UpdateNotice::checking());
  show(UpdateNotice::failed(UpdateFailure::expired));
  ASSERT_EQ(shown().size(), 1U);
  EXPECT_EQ(shown().front()->notice().kind, UpdateNotice::Kind::failed);
  windows->bringForward();
  windows->setProgress(1, 2);
  windows->close();
  EXPECT_TRUE(shown().empty());
  windows->bringForward();
  windows->setProgress(1, 2);
}

TEST_F(LiveUpdateWindowsTest, AnAnswerComesInALaterTurnAndMayCloseTheWindow) {
  show(UpdateNotice::failed(UpdateFailure::expired));
  shown().front()->safeButton()->click();
  EXPECT_EQ(answers, 0);
  executor.drain();
  EXPECT_EQ(answers, 1);
  EXPECT_TRUE(shown().empty());
}

TEST_F(LiveUpdateWindowsTest, AfterItsEndNothingIsAnswered) {
  show(UpdateNotice::failed(UpdateFailure::expired));
  shown().front()->safeButton()->click();
  windows.reset();
  executor.drain();
  EXPECT_EQ(answers, 0);
  EXPECT_TRUE(shown().empty());
}

}  // namespace
}  // namespace quillmere
