#include "popup/DurationPicker.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(DurationPicker, OffersEveryDurationInTheOrderOfTheMenus) {
  DurationPicker picker(nullptr);
  ASSERT_EQ(picker.count(), static_cast<int>(kTemporaryDurations.size()));
  for (int i = 0; i < picker.count(); ++i) {
    picker.setCurrentIndex(i);
    EXPECT_EQ(picker.duration(), kTemporaryDurations[static_cast<size_t>(i)]);
    EXPECT_EQ(picker.currentText(), menuText(picker.duration()));
  }
}

TEST(DurationPicker, IsAsWideAsItsLongestTextNeedsWhicheverIsChosen) {
  DurationPicker picker(nullptr);
  const QSize size = picker.sizeHint();
  EXPECT_EQ(size.height(), 36);
  for (const TemporaryDuration duration : kTemporaryDurations) {
    picker.setDuration(duration);
    EXPECT_EQ(picker.sizeHint(), size);
    const QString whole = QStringLiteral("Temporary for ") + menuText(duration);
    EXPECT_GT(size.width(), picker.fontMetrics().horizontalAdvance(whole));
  }
}

TEST(DurationPicker, WithoutAChoiceItIsFiveMinutes) {
  DurationPicker picker(nullptr);
  picker.setCurrentIndex(-1);
  EXPECT_EQ(picker.duration(), TemporaryDuration::fiveMinutes);
}

}  // namespace
}  // namespace quillmere
