#include "controls/WorkIndicator.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(WorkIndicator, TurnsWhileItIsSeen) {
  QWidget window;
  WorkIndicator indicator(&window);
  EXPECT_FALSE(indicator.isWorking());
  window.show();
  EXPECT_TRUE(indicator.isWorking());
  window.hide();
  EXPECT_FALSE(indicator.isWorking());
}

}  // namespace
}  // namespace quillmere
