#include "description/KnownWords.h"

#include <gtest/gtest.h>
#include <random>

#include "support/Printing.h"

namespace quillmere::testing {
namespace {

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}
std::string spelled(const char* known, const char* word) {
  return KnownWords(text(known)).spellCheck(text(word)).toStdString();
}
CharacterCodes codes(std::string_view word) {
  return {word.begin(), word.end()};
}

TEST(KnownWords, AWordIsARunOfLettersDigitsAndApostrophes) {
  const KnownWords known(text("Nike, don't v2;ab-cd (x1)"));
  for (const char* word : {"nike", "don't", "v2", "ab", "cd", "x1"}) EXPECT_TRUE(known.contains(text(word))) << word;
  EXPECT_EQ(known.size(), 6u);
}

TEST(KnownWords, WordsOfOneCharacterAreNotKept) {
  EXPECT_TRUE(KnownWords(text("a b 1 é")).isEmpty());
  EXPECT_EQ(KnownWords(text("ab")).size(), 1u);
  EXPECT_TRUE(KnownWords(text("e\u0301")).isEmpty()) << "one character of two code points";
}

TEST(Characters, RomanNumeralsAndCircledLettersHaveACase) {
  for (const char* capital : {"A", "Ⅻ", "Ⓐ", "🄰", "🅐", "🅰", "Ж"}) {
    EXPECT_TRUE(isUppercase(text(capital))) << capital;
    EXPECT_FALSE(isLowercase(text(capital))) << capital;
  }
  for (const char* small : {"a", "ⅻ", "ⓐ", "ж"}) {
    EXPECT_TRUE(isLowercase(text(small))) << small;
    EXPECT_FALSE(isUppercase(text(small))) << small;
  }
  for (const char* neither : {"1", "①", "字", "-"}) {
    EXPECT_FALSE(isUppercase(text(neither)) || isLowercase(text(neither))) << neither;
  }
}

TEST(KnownWords, NoTextKnowsNothing) {
  EXPECT_TRUE(KnownWords(QString()).isEmpty());
  EXPECT_TRUE(KnownWords(text("... — !")).isEmpty());
}

TEST(KnownWords, ACapitalisedSpellingSurvivesLaterOnes) {
  EXPECT_EQ(spelled("Nikes nikes NIKES", "nikesx"), "Nikes");
}

TEST(KnownWords, AnAllLowercaseSpellingGivesWayToWhateverComesNext) {
  EXPECT_EQ(spelled("github GitHub GITHUB", "githubb"), "GitHub");
}

TEST(SpellCheck, OneEditWithTheSameFirstLetterIsCorrected) {
  EXPECT_EQ(spelled("Nike", "Nikey"), "Nike");
  EXPECT_EQ(spelled("Nike Mike", "Nikey"), "Nike");
  EXPECT_EQ(spelled("Mike", "Nikey"), "Nikey");
}

TEST(SpellCheck, TwoClosestWordsAreNone) {
  EXPECT_EQ(spelled("Nikee Nilee", "Nidee"), "Nidee");
  EXPECT_EQ(spelled("Nikee Nidea", "Nidee"), "Nidee") << "both at one edit";
  EXPECT_EQ(spelled("Photograph Photograms", "Photogreph"), "Photograph") << "one is nearer";
}

TEST(SpellCheck, WordsOfFewerThanFiveCharactersStay) {
  EXPECT_EQ(spelled("Nike Nile", "Nide"), "Nide");
  EXPECT_EQ(spelled("Nike", "Nikx"), "Nikx");
  EXPECT_EQ(spelled("Nikes", "Nikex"), "Nikes");
}

TEST(SpellCheck, StopWordsStay) {
  EXPECT_EQ(spelled("Logie", "Login"), "Login");
  EXPECT_EQ(spelled("Logie", "login"), "login");
}

TEST(SpellCheck, KnownWordsStayHoweverTheyAreWritten) {
  EXPECT_EQ(spelled("Ferrari Ferrara", "FERRARI"), "FERRARI");
}

TEST(SpellCheck, TheLimitIsOneBelowEightCharactersAndTwoFromThere) {
  EXPECT_EQ(spelled("Ferraxy", "Ferrari"), "Ferrari") << "7 characters, two edits";
  EXPECT_EQ(spelled("Ferraxi", "Ferrari"), "Ferraxi");
  EXPECT_EQ(spelled("Ferrarxy", "Ferraris"), "Ferrarxy") << "8 characters, two edits";
  EXPECT_EQ(spelled("Ferrawxy", "Ferraris"), "Ferraris") << "three edits";
}

TEST(SpellCheck, LengthsMayDifferByTheLimit) {
  EXPECT_EQ(spelled("Photographer", "Photograph"), "Photographer");
  EXPECT_EQ(spelled("Photographers", "Photograph"), "Photograph");
}

TEST(SpellCheck, APluralIsNoMisspelling) {
  EXPECT_EQ(spelled("invoicing", "Invoicings"), "Invoicings");
  EXPECT_EQ(spelled("Invoicings", "invoicing"), "invoicing");
}

TEST(SpellCheck, APossessiveEndingIsPutBack) {
  EXPECT_EQ(spelled("Nikes", "Nikex's"), "Nikes's");
  EXPECT_EQ(spelled("Nikes", "Nikex’s"), "Nikes’s");
}

TEST(SpellCheck, CharactersAreThoseThatAPersonSees) {
  // A letter with its mark is one character, and another than the letter alone.
  EXPECT_EQ(spelled("Cafe\u0301s", "Cafe\u0301xs"), "Cafe\u0301s");
  EXPECT_EQ(spelled("e\u0301tude", "etudex"), "etudex") << "another first character";
}

TEST(EditDistance, CountsInsertionsDeletionsAndReplacements) {
  EXPECT_EQ(editDistance(codes("kitten"), codes("sitting"), 9), 3u);
  EXPECT_EQ(editDistance(codes("abc"), codes("abc"), 2), 0u);
  EXPECT_EQ(editDistance(codes(""), codes("ab"), 2), 2u);
  EXPECT_EQ(editDistance(codes("ab"), codes("ba"), 2), 2u) << "an exchange is two";
}

TEST(EditDistance, BeyondTheLimitItIsOneMore) {
  EXPECT_EQ(editDistance(codes("kitten"), codes("sitting"), 2), 3u);
  EXPECT_EQ(editDistance(codes("aaaaaaaa"), codes("bbbbbbbb"), 2), 3u);
  EXPECT_EQ(editDistance(codes("aaaaaaaa"), codes("bbbbbbbb"), 1), 2u);
}

TEST(EditDistance, IsThatOfThePlainTableOnRandomWords) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    std::mt19937 random(seed);
    const auto word = [&] {
      CharacterCodes result(random() % 9);
      for (uint32_t& code : result) code = static_cast<uint32_t>('a' + random() % 3);
      return result;
    };
    const CharacterCodes a = word();
    const CharacterCodes b = word();
    std::vector<std::vector<size_t>> table(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
      for (size_t j = 0; j <= b.size(); ++j) {
        if (i == 0 || j == 0) {
          table[i][j] = i + j;
        } else {
          table[i][j] = std::min(
              {table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
        }
      }
    }
    const size_t limit = random() % 4;
    EXPECT_EQ(editDistance(a, b, limit), std::min(table[a.size()][b.size()], limit + 1)) << "seed " << seed;
  }
}

}  // namespace
}  // namespace quillmere::testing
