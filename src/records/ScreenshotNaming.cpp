#include "records/ScreenshotNaming.h"

#include <algorithm>

#include "foundation/FileStatus.h"
#include "foundation/Graphemes.h"
#include "records/PictureFormat.h"

namespace quillmere {
namespace {

constexpr qsizetype kMaxStemBytes = 160;
constexpr int kMaxNumber = 999;
/// The dash and the curly quotes are in it by design: they are what models like to write.
constexpr QStringView kForbidden = u"/\\:?*\"<>|—“”";

/// Also the invisible formatting characters, so that no bidirectional override can disguise a name.
bool isControl(char32_t c) {
  const auto category = QChar::category(c);
  return category == QChar::Other_Control || category == QChar::Other_Format || category == QChar::Other_Surrogate;
}

bool isForbidden(char32_t c) {
  return c < 0x10000 && kForbidden.contains(QChar(static_cast<char16_t>(c)));
}

/// Of one character as a person sees it. A mark on top of a slash, or a number sign before it, does not make it another
/// character; a joiner inside an emoji or a word is part of it.
bool separates(const QList<uint>& codes) {
  return std::any_of(codes.begin(), codes.end(), isForbidden) || std::all_of(codes.begin(), codes.end(), isControl);
}

QString replacingForbidden(const QString& name) {
  QString result;
  result.reserve(name.size());
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(name)) {
    const auto codes = QStringView(name).mid(begin, end - begin).toUcs4();
    // Written anew from its codes: half a character must not reach the file system.
    result += separates(codes) ? QStringLiteral(" ")
                               : QString::fromUcs4(reinterpret_cast<const char32_t*>(codes.data()), codes.size());
    begin = end;
  }
  return result;
}

QString trimmingStopsAndBlanks(const QString& text) {
  const auto isTrimmed = [](QChar c) { return c == QLatin1Char('.') || c == QLatin1Char(' '); };
  qsizetype begin = 0;
  qsizetype end = text.size();
  while (begin < end && isTrimmed(text[begin])) ++begin;
  while (end > begin && isTrimmed(text[end - 1])) --end;
  return text.mid(begin, end - begin);
}

/// Each is tried once, in the order of the formats.
QString withoutPictureExtensions(QString stem) {
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      const QString ending = QStringLiteral(".") + QLatin1String(extension.data(), static_cast<int>(extension.size()));
      if (stem.endsWith(ending, Qt::CaseInsensitive)) stem.chop(ending.size());
    }
  }
  return stem;
}

/// The longest beginning of whole characters that fits.
QString cutToBytes(const QString& text, qsizetype limit) {
  // Every UTF-16 unit takes a byte or more, so the limit lies within these units however long the text is.
  const QString start = text.left(limit + 1);
  qsizetype bytes = 0;
  qsizetype end = 0;
  for (const qsizetype next : graphemeEnds(start)) {
    bytes += QStringView(start).mid(end, next - end).toUtf8().size();
    if (bytes > limit) break;
    end = next;
  }
  return text.left(end);
}

}  // namespace

std::optional<QString> sanitizedFileStem(const QString& name) {
  QString stem = trimmingStopsAndBlanks(replacingForbidden(name).simplified());
  stem = withoutPictureExtensions(stem);
  stem = trimmingStopsAndBlanks(cutToBytes(stem, kMaxStemBytes));
  if (stem.isEmpty()) return std::nullopt;
  return stem;
}

QString displayName(const ScreenshotItem& item, ScreenshotNaming naming) {
  if (naming == ScreenshotNaming::suggested && item.imageDescription && item.suggestedName) {
    if (const auto cleaned = sanitizedFileStem(QString::fromUtf8(*item.suggestedName))) return *cleaned;
  }
  return item.url.displayStem();
}

NumberedSearchResult renameAvoidingCollision(const FileURL& url, const QString& stem,
                                             const std::function<MoveResult(const FileURL&, const FileURL&)>& perform) {
  using Outcome = NumberedSearchResult::Outcome;
  const std::string extension = url.pathExtension();
  for (int n = 0; n <= kMaxNumber; ++n) {
    std::string name = stem.toStdString();
    if (n > 0) name += " (" + std::to_string(n) + ")";
    if (!extension.empty()) name += "." + extension;
    const FileURL candidate = url.parent().appending(name);
    if (candidate.standardized() == url.standardized()) return {Outcome::alreadyNamed, url};
    // A dangling link counts as taken: a rename would replace it.
    if (fileStatus(candidate)) continue;
    switch (perform(url, candidate)) {
      case MoveResult::done:
        return {Outcome::moved, candidate};
      case MoveResult::destinationExists:
        continue;
      case MoveResult::failed:
        return {Outcome::failed, {}};
    }
  }
  return {Outcome::destinationExists, {}};
}

}  // namespace quillmere
