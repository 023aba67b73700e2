#include "description/ModelAnswer.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere::testing {
namespace {

constexpr const char* kFourWords = "alpha beta gamma delta";
constexpr const char* kFiveWords = "alpha beta gamma delta epsilon";

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}
std::optional<QString> optionalText(const char* utf8) {
  return utf8 ? std::optional(text(utf8)) : std::nullopt;
}
/// The cleaned description; "nothing" when the answer is no good.
std::string description(const char* answer, const char* recognized = nullptr) {
  const auto cleaned = cleanedAnswer(text(answer), QStringLiteral("Name"), optionalText(recognized));
  return cleaned ? cleaned->description.toStdString() : "nothing";
}
std::string filename(const char* answer, const char* recognized = nullptr) {
  const auto cleaned = cleanedAnswer(QStringLiteral("Text"), text(answer), optionalText(recognized));
  return cleaned ? cleaned->filename.toStdString() : "nothing";
}

TEST(ModelAnswer, AMisspelledNameIsCorrectedInBothFields) {
  EXPECT_EQ(description("Nikey login page", "Nike"), "Nike login page");
  EXPECT_EQ(filename("Nikey login page", "Nike"), "Nike login page");
  EXPECT_EQ(description("Nikey login page", "Nike Mike"), "Nike login page");
}

TEST(ModelAnswer, ATokenKeepsItsPunctuation) {
  EXPECT_EQ(description("The (Nikey), page", "Nike"), "The (Nike), page");
}

TEST(ModelAnswer, NothingInItTurnsTheDirectionOfText) {
  EXPECT_EQ(description("a \u202Egnp.exe\u202C b \u2066c\u2069\u200F\u061C"), "a gnp.exe b c");
  EXPECT_EQ(filename("Notes \u202Efdp"), "Notes fdp");
}

TEST(ModelAnswer, ATextWithoutEndIsCutBetweenCharacters) {
  EXPECT_EQ(description(std::string(900'000, 'a').c_str()), std::string(1999, 'a'));
  std::string faces;
  for (int i = 0; i < 2000; ++i) faces += "\U0001F600";
  EXPECT_EQ(description(faces.c_str()), faces.substr(0, 999 * 4));
  EXPECT_EQ(description(std::string(2000, 'a').c_str()), std::string(2000, 'a'));
}

TEST(ModelAnswer, CorrectedTextHasSingleBlanks) {
  EXPECT_EQ(description("Nikey \n login\t page", "Nike"), "Nike login page");
  EXPECT_EQ(description("Two  blanks"), "Two  blanks") << "without known words nothing is corrected";
}

TEST(ModelAnswer, AMongolianVowelSeparatorIsNoWhiteSpace) {
  EXPECT_EQ(description("\u1820\u180E\u1821 page", "Nike"), "\u1820\u180E\u1821 page");
  EXPECT_EQ(description("\u1820\u180E—page"), "\u1820\u180E, page");
  EXPECT_EQ(description("Login\u3000—\u00A0page"), "Login, page") << "what Unicode has as white space is";
}

TEST(ModelAnswer, AnEmDashBecomesAComma) {
  EXPECT_EQ(description("Login page — error shown"), "Login page, error shown");
  EXPECT_EQ(description("Login page—error"), "Login page, error");
  EXPECT_EQ(description("Login page — error shown", kFiveWords), "Login page, error shown")
      << "a token of punctuation alone reaches that step";
}

TEST(ModelAnswer, ANameThatThePictureDoesNotShowIsLeftOutOfTheFileName) {
  EXPECT_EQ(filename("Ferrari Dashboard", kFiveWords), "Dashboard");
  EXPECT_EQ(filename("Ferrari Dashboard", kFourWords), "Ferrari Dashboard");
  EXPECT_EQ(description("Ferrari Dashboard", kFiveWords), "Ferrari Dashboard") << "not out of the description";
  EXPECT_EQ(filename("Ferrari Dashboard", "Ferrari beta gamma delta epsilon"), "Ferrari Dashboard");
}

TEST(ModelAnswer, WhatLooksLikeANameHasFourCharactersAndACapital) {
  EXPECT_EQ(filename("Abc page", kFiveWords), "Abc page");
  EXPECT_EQ(filename("Abcd page", kFiveWords), "Page");
  EXPECT_EQ(filename("abcd page", kFiveWords), "Abcd page");
  EXPECT_EQ(filename("aBcd page", kFiveWords), "Page");
  EXPECT_EQ(filename("Settings Page", kFiveWords), "Settings Page") << "stop words are no names";
}

TEST(ModelAnswer, APunctuatedNameIsLeftOutWhole) {
  EXPECT_EQ(filename("(Ferrari), page", kFiveWords), "Page");
}

TEST(ModelAnswer, LongNumbersAddressesAndDomainsAreDroppedFromFileNames) {
  EXPECT_EQ(filename("report 2024 final"), "Report final");
  EXPECT_EQ(filename("report 202 final"), "Report 202 final");
  EXPECT_EQ(filename("report 1a2b3c4 final"), "Report final");
  EXPECT_EQ(filename("mail a@b page"), "Mail page");
  EXPECT_EQ(filename("visit example.com page"), "Visit page");
  EXPECT_EQ(filename("version v2. notes"), "Version v2. notes");
  EXPECT_EQ(filename("a .hidden thing"), "A .hidden thing");
}

TEST(ModelAnswer, DigitsOfAnyScriptCount) {
  EXPECT_EQ(filename("report ١٢٣٤ final"), "Report final");
}

TEST(ModelAnswer, AFileNameOfDroppedTokensAloneIsNoAnswer) {
  EXPECT_EQ(filename("2024-01-01 a@b.c example.com"), "nothing");
  EXPECT_EQ(filename("Ferrari", kFiveWords), "nothing");
  EXPECT_EQ(filename(""), "nothing");
  EXPECT_EQ(filename("...!?"), "!");
  EXPECT_EQ(filename("???"), "nothing");
}

TEST(ModelAnswer, AnEmptyDescriptionIsNoAnswer) {
  EXPECT_EQ(description(""), "nothing");
  EXPECT_EQ(description(" \n\t"), "nothing");
  EXPECT_EQ(description("—"), ",") << "what the dash became is left";
}

TEST(ModelAnswer, ADescriptionIsTrimmed) {
  EXPECT_EQ(description("\n A page. \n"), "A page.");
}

TEST(ModelAnswer, AFileNameIsCleanedAsAnyOther) {
  EXPECT_EQ(filename("a/b: \"c\".png"), "A b c");
  EXPECT_EQ(filename("../../etc/passwd"), "Etc passwd");
  EXPECT_EQ(filename("name\u202egnp.exe"), "Name") << "two parts around a full stop";
  EXPECT_EQ(filename("one\u0007two"), "One two");
}

TEST(ModelAnswer, TheFirstLetterIsCapitalisedUnlessItsWordHasACapital) {
  EXPECT_EQ(filename("settings page"), "Settings page");
  EXPECT_EQ(filename("iPhone settings"), "iPhone settings");
  EXPECT_EQ(filename("settings iPhone"), "Settings iPhone");
  EXPECT_EQ(filename("1st page"), "1st page");
  EXPECT_EQ(filename("élan vital"), "Élan vital");
}

TEST(ModelAnswer, RecognisedTextOfPunctuationChecksNothing) {
  EXPECT_EQ(filename("Ferrari page", "... !"), "Ferrari page");
}

}  // namespace
}  // namespace quillmere::testing
