#include "inbox/TextExtractionProgress.h"

#include <gtest/gtest.h>
#include <QtWidgets/QLabel>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(TextExtractionProgress, CountsDownToOneAndGoes) {
  using Batch = InboxPresentation::TextExtractionBatch;
  QWidget window;
  TextExtractionProgress progress(&window);
  const auto shown = [&] { return progress.isVisibleTo(&window) ? progress.findChild<QLabel*>()->text() : QString(); };
  progress.show(std::nullopt);
  EXPECT_EQ(shown(), QString());
  progress.show(Batch{3, 0});
  EXPECT_EQ(shown(), QStringLiteral("Reading text in 3 screenshots…"));
  progress.show(Batch{3, 2});
  EXPECT_EQ(shown(), QStringLiteral("Reading text in 1 screenshot…"));
  progress.show(Batch{3, 3});
  EXPECT_EQ(shown(), QString());
}

}  // namespace
}  // namespace quillmere
