#include "foundation/TextSearch.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

bool isIn(const char16_t* sought, const char16_t* text, const char* locale = "en") {
  TextSearch search(searchCollator(QString::fromLatin1(locale)), QString::fromUtf16(sought));
  return search.isIn(QString::fromUtf16(text));
}

TEST(TextSearch, CaseAndAccentsAreOne) {
  EXPECT_TRUE(isIn(u"É", u"the letter e"));
  EXPECT_TRUE(isIn(u"e", u"É"));
  EXPECT_TRUE(isIn(u"cafe", u"CAFE\u0301"));
  EXPECT_TRUE(isIn(u"café", u"a cafe\u0301 in town"));
  EXPECT_FALSE(isIn(u"cafes", u"a café"));
}

TEST(TextSearch, AHitIsARunOfTheText) {
  EXPECT_TRUE(isIn(u"ndo", u"Window"));
  EXPECT_FALSE(isIn(u"wnd", u"Window"));
  EXPECT_FALSE(isIn(u"a word", u"a  word"));
}

TEST(TextSearch, ALetterThatCountsAsTwoIsFoundWhole) {
  EXPECT_TRUE(isIn(u"strasse", u"Straße"));
  EXPECT_TRUE(isIn(u"ß", u"Gasse"));
  EXPECT_TRUE(isIn(u"file", u"ﬁle"));
  EXPECT_FALSE(isIn(u"s", u"ß"));
  EXPECT_FALSE(isIn(u"f", u"ﬁ"));
}

TEST(TextSearch, LettersOfTheirOwnStayApart) {
  EXPECT_TRUE(isIn(u"a", u"ä", "de"));
  EXPECT_FALSE(isIn(u"a", u"ä", "sv"));
  EXPECT_TRUE(isIn(u"i", u"I", "en"));
  EXPECT_FALSE(isIn(u"i", u"I", "tr"));
  EXPECT_TRUE(isIn(u"ı", u"I", "tr"));
  EXPECT_TRUE(isIn(u"İ", u"i", "tr"));
  EXPECT_TRUE(isIn(u"c", u"ch", "en"));
  EXPECT_FALSE(isIn(u"c", u"ch", "cs"));
}

TEST(TextSearch, OtherScriptsHaveFormsToo) {
  EXPECT_TRUE(isIn(u"σοφος", u"ΣΟΦΌΣ"));
  EXPECT_TRUE(isIn(u"ПРИВЕТ", u"привет"));
  EXPECT_TRUE(isIn(u"かな", u"カナ"));
  EXPECT_TRUE(isIn(u"\u1100\u1161", u"가"));
  EXPECT_FALSE(isIn(u"가", u"각"));
}

TEST(TextSearch, WhatHasNoWeightIsInEveryText) {
  for (const char16_t* text : {u"", u"word"}) {
    EXPECT_TRUE(isIn(u"", text));
    EXPECT_TRUE(isIn(u"\u0301", text));
    EXPECT_TRUE(isIn(u"\u200d\u00ad", text));
  }
  EXPECT_FALSE(isIn(u"a", u""));
}

TEST(TextSearch, BrokenTextHarmsNothing) {
  const QString half(QChar(0xD83D));
  TextSearch search(searchCollator(QStringLiteral("en")), half);
  EXPECT_TRUE(search.isIn(QStringLiteral("a") + half + QStringLiteral("b")));
  EXPECT_FALSE(search.isIn(QStringLiteral("ab")));
}

TEST(TextSearch, OneSearchIsAskedAboutManyTexts) {
  TextSearch search(searchCollator(QStringLiteral("en")), QStringLiteral("two"));
  EXPECT_FALSE(search.isIn(QStringLiteral("one")));
  EXPECT_TRUE(search.isIn(QStringLiteral("one two")));
  EXPECT_FALSE(search.isIn(QString()));
  EXPECT_TRUE(search.isIn(QStringLiteral("TWO")));
}

TEST(TextSearch, WithoutIcusDataThereIsACoarserOne) {
  TextSearch search(nullptr, QStringLiteral("WORD"));
  EXPECT_TRUE(search.isIn(QStringLiteral("a word")));
  EXPECT_FALSE(search.isIn(QStringLiteral("wörd")));
}

}  // namespace
}  // namespace quillmere
