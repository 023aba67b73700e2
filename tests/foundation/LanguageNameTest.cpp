#include "foundation/LanguageName.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

std::string name(const char* identifier) {
  return languageNameInEnglish(QString::fromLatin1(identifier)).toStdString();
}

TEST(LanguageName, TellsTheLanguageAndItsPlaceAndScript) {
  EXPECT_EQ(name("fr"), "French");
  EXPECT_EQ(name("pt-BR"), "Portuguese (Brazil)");
  EXPECT_EQ(name("zh-Hant-TW"), "Chinese (Traditional, Taiwan)");
  EXPECT_EQ(name("de_AT.UTF-8"), "German (Austria)");
}

TEST(LanguageName, IsEmptyForWhatNamesNoLanguage) {
  for (const char* none : {"", "C", "C.UTF-8", "?", "-"}) EXPECT_EQ(name(none), "") << none;
}

}  // namespace
}  // namespace quillmere
