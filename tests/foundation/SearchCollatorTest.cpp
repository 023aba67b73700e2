#include "foundation/SearchCollator.h"

#include <gtest/gtest.h>
#include <QtCore/QLocale>

#include "foundation/TextSearch.h"

namespace quillmere {
namespace {

bool isIn(const char* locale, const QString& sought, const QString& text) {
  return TextSearch(searchCollator(QString::fromLatin1(locale)), sought).isIn(text);
}

TEST(SearchCollator, IsThereForALocaleThatNobodyKnows) {
  for (const char* locale : {"", "C", "C.UTF-8", "xx_YY", "?"}) {
    EXPECT_TRUE(searchCollator(QString::fromLatin1(locale))) << locale;
    EXPECT_TRUE(isIn(locale, QStringLiteral("E"), QStringLiteral("café"))) << locale;
  }
}

TEST(SearchCollator, PunctuationAndBlanksCountInEveryLocale) {
  for (const char* locale : {"en", "th"}) {
    EXPECT_FALSE(isIn(locale, QStringLiteral("ab"), QStringLiteral("a b a-b"))) << locale;
    EXPECT_FALSE(isIn(locale, QStringLiteral("a b"), QStringLiteral("a-b a.b ab"))) << locale;
  }
}

TEST(SearchCollator, TheOrderMayBeNamedWithTheLocale) {
  EXPECT_FALSE(isIn("de", QStringLiteral("muel"), QStringLiteral("Müller")));
  EXPECT_TRUE(isIn("de@collation=phonebook", QStringLiteral("muel"), QStringLiteral("Müller")));
}

TEST(SearchCollator, ThePersonsLocaleIsTheOneSetForTheProgram) {
  const QLocale before;
  QLocale::setDefault(QLocale(QStringLiteral("tr_TR")));
  EXPECT_EQ(searchLocale(), QStringLiteral("tr_TR"));
  QLocale::setDefault(before);
}

}  // namespace
}  // namespace quillmere
