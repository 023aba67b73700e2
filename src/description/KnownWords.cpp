#include "description/KnownWords.h"

#include <algorithm>
#include <array>
#include <bit>

#include "description/StopWords.h"
#include "foundation/Graphemes.h"

namespace quillmere {
namespace {

constexpr size_t kShortestKey = 2;
constexpr size_t kShortestChecked = 5;
constexpr size_t kLong = 8;
/// Above all code points.
constexpr uint32_t kFirstComposed = 0x110000;

char32_t firstCode(QStringView character) {
  const QChar first = character.front();
  if (first.isHighSurrogate() && character.size() > 1) return QChar::surrogateToUcs4(first, character[1]);
  return first.unicode();
}

struct CodeRange {
  char32_t first;
  char32_t last;
};
// What has a case without being a letter: Roman numerals, circled and squared letters (Unicode, PropList.txt,
// Other_Uppercase and Other_Lowercase; of the latter, what has an upper case).
constexpr std::array kOtherUppercase{CodeRange{0x2160, 0x216F}, CodeRange{0x24B6, 0x24CF}, CodeRange{0x1F130, 0x1F149},
                                     CodeRange{0x1F150, 0x1F169}, CodeRange{0x1F170, 0x1F189}};
constexpr std::array kOtherLowercase{CodeRange{0x0345, 0x0345}, CodeRange{0x2170, 0x217F}, CodeRange{0x24D0, 0x24E9}};

template <size_t count>
bool isOneOf(const std::array<CodeRange, count>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const CodeRange& range) { return range.first <= code && code <= range.last; });
}

bool isOfAWord(QStringView character) {
  return isLetterOrDigit(character) || character == u"'";
}

/// An edit changes two bits at most: what differs in more is farther off than it may be.
uint32_t lettersOf(const CharacterCodes& codes) {
  uint32_t letters = 0;
  for (const uint32_t code : codes) letters |= uint32_t{1} << (code % 32);
  return letters;
}

bool isPluralOf(const CharacterCodes& plural, const CharacterCodes& word) {
  return plural.size() == word.size() + 1 && plural.back() == 's' &&
         std::equal(word.begin(), word.end(), plural.begin());
}

}  // namespace

bool isLetterOrDigit(QStringView character) {
  return QChar::isLetter(firstCode(character)) || isDigit(character);
}
bool isDigit(QStringView character) {
  return QChar::isDigit(firstCode(character));
}
bool isUppercase(QStringView character) {
  const char32_t code = firstCode(character);
  return QChar::isUpper(code) || isOneOf(kOtherUppercase, code);
}
bool isLowercase(QStringView character) {
  const char32_t code = firstCode(character);
  return QChar::isLower(code) || isOneOf(kOtherLowercase, code);
}
bool holdsUppercase(const QString& text) {
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(text)) {
    if (isUppercase(QStringView(text).mid(begin, end - begin))) return true;
    begin = end;
  }
  return false;
}

KnownWords::KnownWords(const QString& text) {
  QString word;
  const auto finishWord = [&] {
    const QString key = word.toLower();
    if (graphemeEnds(key).size() >= kShortestKey) {
      const auto [known, isNew] = words_.try_emplace(key, word);
      // A spelling with a capital stays; one without gives way to whatever comes next.
      if (!isNew && !holdsUppercase(known->second)) known->second = word;
    }
    word.clear();
  };
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(text)) {
    const QStringView character = QStringView(text).mid(begin, end - begin);
    if (isOfAWord(character)) {
      word += character;
    } else if (!word.isEmpty()) {
      finishWord();
    }
    begin = end;
  }
  finishWord();
  for (const auto& [key, spelling] : words_) {
    CharacterCodes codes = codesOf(key, graphemeEnds(key));
    const Group group{codes.front(), codes.size()};
    const uint32_t letters = lettersOf(codes);
    groups_[group].push_back({key, std::move(codes), letters});
  }
}

CharacterCodes KnownWords::codesOf(const QString& word, const std::vector<qsizetype>& ends) const {
  CharacterCodes codes;
  codes.reserve(ends.size());
  qsizetype begin = 0;
  for (const qsizetype end : ends) {
    const QStringView character = QStringView(word).mid(begin, end - begin);
    const char32_t first = firstCode(character);
    const qsizetype unitsOfFirst = QChar::requiresSurrogates(first) ? 2 : 1;
    if (character.size() == unitsOfFirst) {
      codes.push_back(first);
    } else {
      const auto next = static_cast<uint32_t>(kFirstComposed + composed_.size());
      codes.push_back(composed_.try_emplace(character.toString(), next).first->second);
    }
    begin = end;
  }
  return codes;
}

QString KnownWords::spellCheck(const QString& word) const {
  for (const QString& ending : {QStringLiteral("'s"), QStringLiteral("’s")}) {
    if (word.endsWith(ending)) return spellCheck(word.chopped(ending.size())) + ending;
  }
  const QString lower = word.toLower();
  if (graphemeEnds(word).size() < kShortestChecked || isStopWord(lower) || contains(lower)) return word;

  const CharacterCodes codes = codesOf(lower, graphemeEnds(lower));
  const uint32_t letters = lettersOf(codes);
  const size_t limit = graphemeEnds(word).size() < kLong ? 1 : 2;
  const Word* closest = nullptr;
  size_t smallest = limit + 1;
  bool isTie = false;
  for (size_t length = codes.size() - limit; length <= codes.size() + limit; ++length) {
    const auto group = groups_.find({codes.front(), length});
    if (group == groups_.end()) continue;
    for (const Word& known : group->second) {
      if (static_cast<size_t>(std::popcount(letters ^ known.letters)) > 2 * limit) continue;
      const size_t distance = editDistance(codes, known.codes, limit);
      // A plural is no misspelling.
      if (distance > limit || isPluralOf(codes, known.codes) || isPluralOf(known.codes, codes)) continue;
      if (distance < smallest) {
        smallest = distance;
        closest = &known;
        isTie = false;
      } else if (distance == smallest) {
        isTie = true;
      }
    }
  }
  return closest && !isTie ? words_.at(closest->key) : word;
}

size_t editDistance(const CharacterCodes& a, const CharacterCodes& b, size_t limit) {
  const size_t beyond = limit + 1;
  if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > limit) return beyond;
  // Only the cells of the table that are at most `limit` off its diagonal can end within the limit. Entry k of a row i
  // is the cell of column i + k - limit; one entry at the end stays beyond.
  std::array<size_t, 2 * kLargestEditLimit + 2> row{};
  const size_t width = 2 * limit + 1;
  for (size_t k = 0; k <= width; ++k) row[k] = k >= limit && k < width ? k - limit : beyond;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t least = beyond;
    for (size_t k = 0; k < width; ++k) {
      const size_t column = i + k;
      if (column < limit || column > b.size() + limit) {
        row[k] = beyond;
        continue;
      }
      size_t distance = row[k + 1] + 1;
      if (k > 0) distance = std::min(distance, row[k - 1] + 1);
      // Column 0 has no neighbour before it.
      if (column > limit) distance = std::min(distance, row[k] + (a[i - 1] == b[column - limit - 1] ? 0 : 1));
      row[k] = std::min(distance, beyond);
      least = std::min(least, row[k]);
    }
    // No later row is below the least of this one.
    if (least == beyond) return beyond;
  }
  return row[b.size() + limit - a.size()];
}

}  // namespace quillmere
