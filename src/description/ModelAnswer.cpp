#include "description/ModelAnswer.h"

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include "description/KnownWords.h"
#include "description/StopWords.h"
#include "foundation/Graphemes.h"
#include "records/ScreenshotNaming.h"

namespace quillmere {
namespace {

/// With fewer words known, a name that is not among them says nothing.
constexpr size_t kFewestWordsForStrictness = 5;
constexpr size_t kShortestName = 4;
constexpr int kTooManyDigits = 4;

/// In UTF-16 units. A description is two sentences; what is so much longer is no description.
constexpr qsizetype kLongestText = 2000;

enum class Mode { plain, strict };

QString shortened(QString text) {
  if (text.size() <= kLongestText) return text;
  text.truncate(kLongestText);
  const auto ends = graphemeEnds(text);
  // The last character may be half of one.
  if (ends.size() > 1) text.truncate(ends[ends.size() - 2]);
  return text;
}

/// A hostile picture may have the model write what turns the direction of all that stands around it. (In a name every
/// invisible character becomes a blank.)
QString withoutDirections(QString text) {
  static const QRegularExpression directions(
      QStringLiteral("[\\x{061C}\\x{200E}\\x{200F}\\x{202A}-\\x{202E}\\x{2066}-\\x{2069}]"));
  return text.remove(directions);
}

QStringList tokensOf(const QString& text) {
  return text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

bool looksLikeName(const QString& word) {
  return graphemeEnds(word).size() >= kShortestName && holdsUppercase(word) && !isStopWord(word.toLower());
}

/// Empty where a file name must not hold the word: the model named something that the screenshot does not show.
QString corrected(const QString& core, const KnownWords& known, Mode mode) {
  const QString fixed = known.spellCheck(core);
  if (mode == Mode::strict && looksLikeName(fixed) && !known.contains(fixed.toLower())) return {};
  return fixed;
}

/// The token with the word between its punctuation corrected; empty where it is to be left out.
QString correctedToken(const QString& token, const KnownWords& known, Mode mode) {
  qsizetype coreBegin = -1;
  qsizetype coreEnd = 0;
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(token)) {
    if (isLetterOrDigit(QStringView(token).mid(begin, end - begin))) {
      if (coreBegin < 0) coreBegin = begin;
      coreEnd = end;
    }
    begin = end;
  }
  // Punctuation on its own stays, such as a dash.
  if (coreBegin < 0) return token;
  const QString core = corrected(token.mid(coreBegin, coreEnd - coreBegin), known, mode);
  return core.isEmpty() ? QString() : token.left(coreBegin) + core + token.mid(coreEnd);
}

QString correctedText(const QString& text, const KnownWords& known, Mode mode) {
  QStringList words;
  for (const QString& token : tokensOf(text)) {
    const QString word = correctedToken(token, known, mode);
    if (!word.isEmpty()) words << word;
  }
  return words.join(QLatin1Char(' '));
}

/// No dates and long numbers, no mail addresses, no domain names.
bool maySayInName(const QString& token) {
  int digits = 0;
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(token)) {
    if (isDigit(QStringView(token).mid(begin, end - begin))) ++digits;
    begin = end;
  }
  return digits < kTooManyDigits && !token.contains(QLatin1Char('@')) &&
         token.split(QLatin1Char('.'), Qt::SkipEmptyParts).size() < 2;
}

/// A first word with a capital inside it is spelled so on purpose.
QString capitalized(const QString& text) {
  const QString firstWord = tokensOf(text).value(0);
  const qsizetype end = graphemeEnds(text).front();
  if (!isLowercase(QStringView(text).left(end)) || holdsUppercase(firstWord)) return text;
  return QLocale().toUpper(text.left(end)) + text.mid(end);
}

}  // namespace

std::optional<ScreenshotAnalysisResult> cleanedAnswer(const QString& description, const QString& filename,
                                                      const std::optional<QString>& recognizedText) {
  const KnownWords known(recognizedText.value_or(QString()));
  ScreenshotAnalysisResult result{withoutDirections(shortened(description)), shortened(filename)};
  if (!known.isEmpty()) {
    const Mode mode = known.size() >= kFewestWordsForStrictness ? Mode::strict : Mode::plain;
    result.description = correctedText(result.description, known, Mode::plain);
    result.filename = correctedText(result.filename, known, mode);
  }
  // White space as Unicode has it; what regular expressions call so holds U+180E too, which is part of Mongolian words.
  static const QRegularExpression dash(QStringLiteral("[\t-\r\\x{85}\\p{Z}]*\u2014[\t-\r\\x{85}\\p{Z}]*"));
  result.description.replace(dash, QStringLiteral(", "));
  result.description = result.description.trimmed();
  if (result.description.isEmpty()) return std::nullopt;

  const auto stem = sanitizedFileStem(result.filename);
  if (!stem) return std::nullopt;
  QStringList words = tokensOf(*stem);
  words.removeIf([](const QString& token) { return !maySayInName(token); });
  const auto cleaned = sanitizedFileStem(words.join(QLatin1Char(' ')));
  if (!cleaned) return std::nullopt;
  result.filename = capitalized(*cleaned);
  return result;
}

}  // namespace quillmere
