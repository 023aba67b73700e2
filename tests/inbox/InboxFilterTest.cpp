#include "inbox/InboxFilter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Scope = InboxFilter::Scope;
using State = ScreenshotItem::State;

class InboxFilterTest : public ::testing::Test {
 protected:
  InboxFilterTest() {
    for (const State state : {State::pending, State::temporary, State::permanent}) {
      items.push_back(bareItem(static_cast<int>(items.size()) + 1));
      items.back().state = state;
    }
  }
  std::vector<const ScreenshotItem*> all() const {
    std::vector<const ScreenshotItem*> pointers;
    for (const ScreenshotItem& item : items) pointers.push_back(&item);
    return pointers;
  }
  /// The numbers of the records that pass.
  std::vector<int> passing(Scope scope, const char* text = "", const UUIDSet& unavailable = {}) const {
    std::vector<int> numbers;
    for (const auto* item : InboxFilter{QString::fromUtf8(text), scope}.apply(all(), unavailable)) {
      numbers.push_back(static_cast<int>(item - items.data()) + 1);
    }
    return numbers;
  }
  std::vector<int> finding(const char* text) const { return passing(Scope::all, text); }

  std::vector<ScreenshotItem> items;
};

TEST_F(InboxFilterTest, ScopesHaveTheirOrderNamesAndTitles) {
  std::vector<std::string> written;
  for (const Scope scope : InboxFilter::kScopes) {
    written.push_back(std::string(codedValue(scope)) + ": " + title(scope).toStdString());
  }
  EXPECT_THAT(written,
              ElementsAre("all: All Screenshots", "pending: Pending Screenshots", "temporary: Temporary Screenshots",
                          "saved: Saved Screenshots", "unavailable: Unavailable Screenshots"));
}

TEST_F(InboxFilterTest, OffItGivesBackWhatItWasGiven) {
  EXPECT_TRUE(InboxFilter().isOff());
  EXPECT_TRUE((InboxFilter{QStringLiteral(" \n\t "), Scope::all}.isOff()));
  EXPECT_FALSE((InboxFilter{QStringLiteral("a"), Scope::all}.isOff()));
  EXPECT_FALSE((InboxFilter{QString(), Scope::saved}.isOff()));
  auto given = all();
  const auto* memory = given.data();
  const auto applied = InboxFilter{QStringLiteral(" "), Scope::all}.apply(std::move(given), {uuid(1)});
  EXPECT_EQ(applied.data(), memory);
  EXPECT_EQ(applied, all());
}

TEST_F(InboxFilterTest, AScopeShowsItsStatus) {
  EXPECT_THAT(passing(Scope::all), ElementsAre(1, 2, 3));
  EXPECT_THAT(passing(Scope::pending), ElementsAre(1));
  EXPECT_THAT(passing(Scope::temporary), ElementsAre(2));
  EXPECT_THAT(passing(Scope::saved), ElementsAre(3));
  EXPECT_THAT(passing(Scope::unavailable), IsEmpty());
}

TEST_F(InboxFilterTest, ALostFileCountsUnderUnavailableAlone) {
  for (const auto& [scope, number] : {std::pair(Scope::pending, 1), {Scope::temporary, 2}, {Scope::saved, 3}}) {
    EXPECT_THAT(passing(scope, "", {uuid(number)}), IsEmpty());
    EXPECT_THAT(passing(Scope::unavailable, "", {uuid(number)}), ElementsAre(number));
  }
  EXPECT_THAT(passing(Scope::all, "", {uuid(3)}), ElementsAre(1, 2, 3));
}

TEST_F(InboxFilterTest, CaseAndAccentsAreOne) {
  items[1].recognizedText = "Zum Kaffee";
  EXPECT_THAT(finding("É"), ElementsAre(2));
  EXPECT_THAT(finding("KÄFFEE"), ElementsAre(2));
}

TEST_F(InboxFilterTest, BlanksAroundAWordAreNotSought) {
  items[0].imageDescription = "oneword";
  EXPECT_THAT(finding(" \n oneword\t "), ElementsAre(1));
  EXPECT_THAT(finding("\n \t"), ElementsAre(1, 2, 3));
}

TEST_F(InboxFilterTest, TheLabelOfAKindOfCaptureFindsItsScreenshots) {
  items[0].captureKind = CaptureKind::window;
  items[1].captureKind = CaptureKind::display;
  items[2].imageDescription = "A window with text";
  EXPECT_THAT(finding("Window"), ElementsAre(1, 3));
  EXPECT_THAT(finding("entire screen"), ElementsAre(2));
}

TEST_F(InboxFilterTest, TheNameIsSearchedWithItsExtension) {
  EXPECT_THAT(finding("2.PNG"), ElementsAre(2));
  EXPECT_THAT(finding("shots"), IsEmpty()) << "the folder";
}

TEST_F(InboxFilterTest, ARecordHasToPassBoth) {
  for (ScreenshotItem& item : items) item.recognizedText = "word";
  items[2].recognizedText.reset();
  EXPECT_THAT(passing(Scope::temporary, "word"), ElementsAre(2));
  EXPECT_THAT(passing(Scope::saved, "word"), IsEmpty());
  EXPECT_THAT(passing(Scope::unavailable, "word", {uuid(1), uuid(3)}), ElementsAre(1));
}

}  // namespace
}  // namespace quillmere::testing
