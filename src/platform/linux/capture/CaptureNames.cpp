#include "platform/linux/capture/CaptureNames.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <algorithm>
#include <array>

#include "platform/linux/capture/CaptureWords.h"

namespace quillmere {
namespace {

// Patterns cover the whole stem, composed and in lower case.

/// Names without a word that is translated.
constexpr std::array kOwnPatterns{
    u"\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d(_\\d+|-\\d\\d)?",  // Flameshot; its second in a minute; with seconds
    u"ksnip_\\d{8}-\\d{6}(-\\d+)?",                         // ksnip
    u"\\d{4}-\\d\\d-\\d\\d-\\d{6}_.+_scrot(_\\d{3})?",      // scrot
    u"\\d{8}_\\d\\dh\\d\\dm\\d\\ds_grim",                   // grim
    u"\\d{4}-\\d\\d-\\d\\dt\\d\\d:\\d\\d:\\d\\d,\\d{9}.+",  // grimshot
    u"\\d{4}-\\d\\d-\\d\\d-\\d{6}_hyprshot",                // hyprshot
    u"screen-\\d{4}-\\d\\d-\\d\\d-\\d\\d-\\d\\d-\\d\\d",    // ScreenGrab
    u"screenshot_\\d{8}-\\d{6}.*",                          // Android, by sync
};

/// A date as the tools with translated words write it, what stands around it, and what they add to a name that is
/// taken.
constexpr auto* kWordedDate =
    u"(?<before>.*?)"
    u"(\\d{4}-\\d\\d-\\d\\d[ _]\\d\\d-\\d\\d-\\d\\d"   // GNOME Shell, gnome-screenshot, MATE, niri; Xfce, COSMIC
    u"|\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d"  // elementary, ChromeOS
    u"|\\d{8}_\\d{6}"                                  // Spectacle
    u"|(?<run>\\d{14}))"                               // deepin
    u"(?<after>.*?)"
    u"(-\\d+| - \\d+|@\\dx| \\(\\d+\\))?";

/// What comes from other systems by sync: a number, or a date with or without a word before the time, which may have
/// one behind it.
constexpr auto* kSyncedName =
    u"(?<word>.+?)( \\(\\d+\\)"
    u"| ?\\d{4}-\\d\\d-\\d\\d (\\d{6}|([^\\d\\s]+ ([^\\d\\s]+ )?)?\\d{1,2}\\.\\d\\d\\.\\d\\d( \\S+)?))";

QRegularExpression whole(const char16_t* pattern) {
  return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromUtf16(pattern)));
}

bool isWord(const QString& text) {
  const auto words = captureWords();
  return std::binary_search(words.begin(), words.end(), std::u16string_view(text.toStdU16String()));
}

QString foldedStem(std::string_view fileName) {
  const std::string_view stem = fileName.substr(0, fileName.rfind('.'));
  return QString::fromUtf8(stem.data(), static_cast<qsizetype>(stem.size()))
      .normalized(QString::NormalizationForm_C)
      .toLower()
      .simplified();
}

bool isOwnName(const QString& stem) {
  static const auto patterns = [] {
    std::array<QRegularExpression, kOwnPatterns.size()> result;
    std::transform(kOwnPatterns.begin(), kOwnPatterns.end(), result.begin(), &whole);
    return result;
  }();
  return std::any_of(patterns.begin(), patterns.end(),
                     [&](const QRegularExpression& pattern) { return pattern.match(stem).hasMatch(); });
}

bool isWordedName(const QString& stem) {
  static const QRegularExpression pattern = whole(kWordedDate);
  const auto match = pattern.match(stem);
  if (!match.hasMatch()) return false;
  QString before = match.captured(QStringLiteral("before"));
  const QString after = match.captured(QStringLiteral("after"));
  if (isWord(before + QStringLiteral("%s") + after)) return true;
  // The word alone, then a blank or a line.
  const bool isSeparated = before.endsWith(QLatin1Char(' ')) || before.endsWith(QLatin1Char('_'));
  if (!after.isEmpty() || !isSeparated) return false;
  before.chop(1);
  if (isWord(before)) return true;
  // deepin says between them what was taken.
  return !match.captured(QStringLiteral("run")).isEmpty() && isWord(before.section(QLatin1Char('_'), 0, 0));
}

bool isSyncedName(const QString& stem) {
  static const QRegularExpression pattern = whole(kSyncedName);
  const auto match = pattern.match(stem);
  return match.hasMatch() && isWord(match.captured(QStringLiteral("word")));
}

std::optional<QDate> dayIn(const QString& stem) {
  static const QRegularExpression pattern(QStringLiteral("(\\d{4})-?(\\d\\d)-?(\\d\\d)"));
  const auto match = pattern.match(stem);
  const QDate day(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
  return day.isValid() ? std::optional(day) : std::nullopt;
}

}  // namespace

std::optional<CaptureName> CaptureName::of(std::string_view fileName) {
  const QString stem = foldedStem(fileName);
  if (!isOwnName(stem) && !isWordedName(stem) && !isSyncedName(stem)) return std::nullopt;
  return CaptureName{dayIn(stem)};
}

}  // namespace quillmere
