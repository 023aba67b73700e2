#include "foundation/Localized.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

std::string filled(const char* key, const std::vector<LocalizedArgument>& arguments = {}) {
  return localized(key, arguments).toStdString();
}
QString text(const char* bytes) {
  return QString::fromUtf8(bytes);
}

TEST(Localized, UnknownKeyStandsForItself) {
  EXPECT_EQ(filled("No such text"), "No such text");
  EXPECT_EQ(filled(""), "");
  EXPECT_EQ(filled("Bücher ’ 截图"), "Bücher ’ 截图");
}

TEST(Localized, PlaceholdersTakeTheArgumentsInTheirOrder) {
  EXPECT_EQ(filled("%@ and %@", {text("a"), text("b")}), "a and b");
  EXPECT_EQ(filled("%lld of %lld", {1, 2}), "1 of 2");
  EXPECT_EQ(filled("%@: %lld", {text("n"), 5}), "n: 5");
}

TEST(Localized, PositionsChooseTheArgument) {
  EXPECT_EQ(filled("%2$@ before %1$@", {text("a"), text("b")}), "b before a");
  EXPECT_EQ(filled("%2$lld %1$@ %2$lld", {text("a"), 7}), "7 a 7");
}

TEST(Localized, PlaceholderInsideAnArgumentStaysAsItIs) {
  EXPECT_EQ(filled("%@ and %@", {text("%@"), text("%1$@ %lld")}), "%@ and %1$@ %lld");
}

TEST(Localized, PercentSignsOfOtherKindsStay) {
  for (const char* plain : {"100%", "% done", "5% of 3", "%d", "%s", "%1", "%1$", "%1$d", "%l", "%ll", "%0$@"}) {
    EXPECT_EQ(filled(plain, {}), plain);
  }
}

TEST(Localized, PlaceholderWithoutAnArgumentIsEmpty) {
  EXPECT_EQ(filled("a%@b"), "ab");
  EXPECT_EQ(filled("a%9$@b", {text("x")}), "ab");
  EXPECT_EQ(filled("a%99999999999999999999999$@b", {text("x")}).substr(0, 1), "a");
}

TEST(Localized, NumberChoosesAmongThePluralForms) {
  EXPECT_EQ(filled("%lld Minutes", {1}), "1 Minute");
  EXPECT_EQ(filled("%lld Minutes", {0}), "0 Minutes");
  EXPECT_EQ(filled("%lld Minutes", {2}), "2 Minutes");
  EXPECT_EQ(filled("%lld Minutes", {15}), "15 Minutes");
  EXPECT_EQ(filled("%lld Hours", {1}), "1 Hour");
}

TEST(Localized, FirstNumberChoosesWhateverTextsStandAround) {
  EXPECT_EQ(filled("Screenshot ready for a decision. %1$lld more waiting. Press %2$@ to review it.", {1, text("⌘R")}),
            "Screenshot ready for a decision. 1 more waiting. Press ⌘R to review it.");
}

TEST(Localized, TextWithPluralFormsAndNoNumberHasTheOtherForm) {
  EXPECT_EQ(filled("%lld Minutes", {text("five")}), "five Minutes");
}

TEST(Localized, WordsOfThisDesktopHoldOverTheKeys) {
  EXPECT_EQ(filled("Choose the folder where macOS saves screenshots so Quillmere can find new ones."),
            "Choose the folder where your desktop saves screenshots so Quillmere can find new ones.");
}

TEST(Localized, ArgumentTellsItsKind) {
  EXPECT_TRUE(LocalizedArgument(5).isNumber());
  EXPECT_TRUE(LocalizedArgument(qsizetype{5}).isNumber());
  EXPECT_EQ(LocalizedArgument(qsizetype{5}).number(), 5);
  EXPECT_FALSE(LocalizedArgument(text("5")).isNumber());
  EXPECT_EQ(LocalizedArgument(text("5")).display(), text("5"));
}

}  // namespace
}  // namespace quillmere
