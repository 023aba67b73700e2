#include "foundation/TextFolding.h"

#include <gtest/gtest.h>
#include <random>

#include "foundation/TextSearch.h"

namespace quillmere {
namespace {

Finding finding(const TextFolding& folding, const QString& sought, const QString& text) {
  const FoldedText folded = folding.fold(text);
  return find(ByteSearch(folding.fold(sought).bytes, folded.bytes), folded.bytes, folded.doubts);
}

std::string units(const QString& text) {
  std::string written;
  for (const QChar unit : text)
    written += "\\u" + QString::number(unit.unicode(), 16).rightJustified(4, u'0').toStdString();
  return written;
}

// --- The bytes ---

TEST(TextFolding, LatinTextTakesOneByteALetter) {
  const TextFolding folding(QStringLiteral("en"));
  const QString text = QStringLiteral("Größe, naïve “words” and 1,234.56 €…\n");
  EXPECT_EQ(folding.fold(text).bytes.size(), static_cast<size_t>(text.size()) + 4)
      << "ß is two letters, … three; € takes two bytes";
  EXPECT_EQ(folding.fold(QStringLiteral("привет")).bytes.size(), 12u);
  EXPECT_EQ(folding.fold(QStringLiteral("かな")).bytes.size(), 4u);
  EXPECT_LE(folding.fold(QStringLiteral("中文")).bytes.size(), 10u);
}

TEST(TextFolding, NoByteIsZero) {
  const TextFolding folding(QStringLiteral("en"));
  QString all;
  for (char32_t c = 0; c < 0x11000; ++c) all += QString::fromUcs4(&c, 1);
  EXPECT_EQ(folding.fold(all).bytes.find('\0'), std::string::npos);
}

TEST(TextFolding, OnlyUnusualTextIsDoubtful) {
  const TextFolding folding(QStringLiteral("en"));
  EXPECT_TRUE(folding.fold(QStringLiteral("Écoutez: naïve “words”.\n")).doubts.empty());
  EXPECT_TRUE(folding.fold(QStringLiteral("e\u0301tat привет カナ")).doubts.empty());
  EXPECT_FALSE(folding.fold(QStringLiteral("Straße")).doubts.empty());
  EXPECT_EQ(finding(folding, QStringLiteral("strasse"), QStringLiteral("Straße")), Finding::certain);
  EXPECT_EQ(finding(folding, QStringLiteral("str"), QStringLiteral("Straße")), Finding::certain);
  EXPECT_EQ(finding(folding, QStringLiteral("stras"), QStringLiteral("Straße")), Finding::doubtful);
  EXPECT_EQ(finding(folding, QStringLiteral("s"), QStringLiteral("ß S")), Finding::certain) << "by its second place";
  EXPECT_EQ(finding(folding, QStringLiteral("t"), QStringLiteral("ß")), Finding::none);
}

// --- Against ICU's own search ---

struct Language {
  const char* locale;
  std::vector<QString> letters;
};

/// Letters that have something about them, whole and in pieces.
std::vector<QString> letters(std::initializer_list<const char16_t*> written) {
  std::vector<QString> made;
  for (const char16_t* text : written) made.push_back(QString::fromUtf16(text));
  return made;
}

const std::vector<QString>& commonLetters() {
  static const std::vector<QString> common = letters({u"a", u"b", u"c", u"e", u"h", u"i", u"l", u"s", u"A", u"C", u"H",
                                                      u"I", u" ", u".", u"-", u"\n", u"\r", u"1", u"2"});
  return common;
}

std::vector<Language> languages() {
  const auto latin = letters({u"é",  u"e\u0301", u"ê\u0323", u"ä",      u"a\u0308", u"a\u0323\u0308",
                              u"ß",  u"ẞ",       u"æ",       u"œ",      u"ﬁ",       u"ﬃ",
                              u"ij", u"ĳ",       u"ø",       u"đ",      u"½",       u"…",
                              u"’",  u"\u0301",  u"\u0308",  u"\u00ad", u"\u200b",  u"l·",
                              u"ŀ",  u"№",       u"²",       u"Ａ",     u"\u0345",  u"ȟ",
                              u"ŝ"});
  const auto turkish = letters({u"i", u"ı", u"İ", u"I", u"i\u0307", u"I\u0307", u"ş", u"ğ", u"â", u"g\u0306"});
  const auto contracted = letters({u"ch",       u"Ch",       u"cH",      u"CH", u"c",   u"h",       u"č",  u"c\u030c",
                                   u"ch\u0301", u"c\u0301h", u"aa",      u"å",  u"Aa",  u"a\u030a", u"ae", u"ä",
                                   u"ü",        u"ue",       u"u\u0308", u"dž", u"ddz", u"sz",      u"ssz"});
  const auto korean = letters({u"가", u"각", u"간", u"나", u"힣", u"\u1100", u"\u1161", u"\u11a8", u"\u1100\u1161",
                               u"\u1100\u1161\u11a8", u"ㄱ", u"ㅏ", u"\u1102", u"\u1160"});
  const auto japanese = letters({u"か", u"カ", u"が", u"か\u3099", u"ｶ", u"ﾞ", u"ー", u"ゝ", u"ヽ", u"っ", u"日", u"本",
                                 u"々", u"株", u"㍿", u"。", u"\u3099", u"きー", u"カー"});
  const auto greek = letters({u"σ", u"ς", u"Σ", u"ό", u"ο\u0301", u"ΐ", u"ᾳ", u"α\u0345", u"ж", u"й", u"и\u0306", u"ё",
                              u"е\u0308", u"Й", u"ґ"});
  const auto rest = letters({u"\U0001F469",
                             u"\u200d",
                             u"\U0001F469\u200d\U0001F4BB",
                             u"\U0001F4BB",
                             u"\U0001F44D\U0001F3FD",
                             u"\U0001F1E9\U0001F1EA",
                             u"\U0001F1E9",
                             u"\ufe0f",
                             u"क",
                             u"कि",
                             u"क्ष",
                             u"ि",
                             u"्",
                             u"ท",
                             u"เ",
                             u"เก",
                             u"ก็",
                             u"ا",
                             u"لا",
                             u"ﻻ",
                             u"ا\u0653",
                             u"\u0654",
                             u"\u0f71\u0f72",
                             u"\u0f73",
                             u"\U00020000",
                             u"\u0378"});
  auto broken = letters({u"\U0001F600", u"a", u"é"});
  broken.push_back(QString(QChar(0xD83D)));
  broken.push_back(QString(QChar(0xDE00)));
  std::vector<Language> all = {{"en", latin},      {"tr", turkish},    {"en", turkish},
                               {"cs", contracted}, {"sk", contracted}, {"da", contracted},
                               {"hu", contracted}, {"sv", latin},      {"ko", korean},
                               {"ja", japanese},   {"en", japanese},   {"el", greek},
                               {"ru", greek},      {"en", rest},       {"th", rest},
                               {"hi", rest},       {"en", broken},     {"de@collation=phonebook", contracted}};
  // Every Latin letter beside every other, where the locale has letters of two.
  std::vector<QString> everyLetter;
  for (char16_t unit = u' '; unit < 0x340; ++unit) {
    if (unit < 0x180 || unit >= 0x300) everyLetter.emplace_back(QChar(unit));
  }
  for (const char* locale : {"en", "cs", "da", "hu", "tr", "hr", "es@collation=traditional", "vi", "lt"}) {
    all.push_back({locale, everyLetter});
  }
  return all;
}

class Texts {
 public:
  Texts(const Language& language, std::mt19937& random) : language_(language), random_(random) {}

  QString any(unsigned most) {
    QString text;
    for (unsigned i = below(most + 1); i > 0; --i) text += letter();
    return text;
  }
  /// A piece of the text, often written in another way.
  QString pieceOf(const QString& text) {
    if (text.isEmpty()) return any(3);
    const qsizetype begin = below(static_cast<unsigned>(text.size()));
    QString piece = text.mid(begin, 1 + below(6));
    switch (below(6)) {
      case 0:
        return piece.normalized(QString::NormalizationForm_D);
      case 1:
        return piece.normalized(QString::NormalizationForm_C);
      case 2:
        return piece.toUpper();
      case 3:
        return piece.toLower();
      case 4:
        return piece.normalized(QString::NormalizationForm_KD);
      default:
        return piece;
    }
  }

 private:
  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  QString letter() {
    const auto& letters = below(3) == 0 ? commonLetters() : language_.letters;
    return letters[below(static_cast<unsigned>(letters.size()))];
  }
  const Language& language_;
  std::mt19937& random_;
};

TEST(TextFolding, AnswersWhatIcusOwnSearchDoes) {
  const unsigned seed = qEnvironmentVariableIsSet("QUILLMERE_SEARCH_SEED")
                            ? qEnvironmentVariable("QUILLMERE_SEARCH_SEED").toUInt()
                            : std::random_device()();
  SCOPED_TRACE(::testing::Message() << "seed " << seed << " (QUILLMERE_SEARCH_SEED)");
  std::mt19937 random(seed);
  constexpr int kPairs = 100'000;
  int hits = 0;
  int doubtful = 0;
  const auto all = languages();
  for (const Language& language : all) {
    const TextFolding folding(QString::fromLatin1(language.locale));
    Texts texts(language, random);
    for (int i = 0; i < kPairs / static_cast<int>(all.size()) + 1;) {
      const QString text = texts.any(14);
      for (int piece = 0; piece < 4; ++piece, ++i) {
        const QString sought = piece % 2 == 1 ? texts.any(3) : texts.pieceOf(text);
        TextSearch search(folding.collator(), sought);
        const bool isIn = search.isIn(text);
        const Finding found = finding(folding, sought, text);
        hits += isIn ? 1 : 0;
        doubtful += found == Finding::doubtful ? 1 : 0;
        if (found == Finding::doubtful) continue;
        ASSERT_EQ(found == Finding::certain, isIn) << language.locale << ": " << units(sought) << " in " << units(text);
      }
    }
  }
  EXPECT_GT(hits, kPairs * 2 / 5);
  EXPECT_LT(hits, kPairs * 4 / 5);
  EXPECT_LT(doubtful, kPairs / 5);
  RecordProperty("hits", hits);
  RecordProperty("doubtful", doubtful);
}

}  // namespace
}  // namespace quillmere
