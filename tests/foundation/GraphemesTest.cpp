#include "foundation/Graphemes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QtCore/QString>

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Graphemes, AnEmptyTextHasNone) {
  EXPECT_THAT(graphemeEnds(QStringView()), IsEmpty());
  EXPECT_THAT(graphemeEnds(u""), IsEmpty());
}

TEST(Graphemes, ALetterWithItsMarksIsOne) {
  EXPECT_THAT(graphemeEnds(u"a\u0301\u0302b"), ElementsAre(3, 4));
}

TEST(Graphemes, LatinTextHasOneForEachUnit) {
  EXPECT_THAT(graphemeEnds(u"a\u00adé\n"), ElementsAre(1, 2, 3, 4));
}

TEST(Graphemes, ALineBreakOfTwoUnitsIsOne) {
  EXPECT_THAT(graphemeEnds(u"a\r\nb\rc"), ElementsAre(1, 3, 4, 5, 6));
}

TEST(Graphemes, AJoinedFamilyIsOne) {
  EXPECT_THAT(graphemeEnds(u"\U0001F468\u200d\U0001F469\u200d\U0001F467!"), ElementsAre(8, 9));
}

TEST(Graphemes, NoneEndsInsideASurrogatePair) {
  EXPECT_THAT(graphemeEnds(u"\U0001F469\u200d\U0002F800\U0001F468"), ElementsAre(3, 5, 7));
}

}  // namespace
}  // namespace quillmere::testing
