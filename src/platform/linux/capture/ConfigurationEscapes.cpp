#include "platform/linux/capture/ConfigurationEscapes.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quillmere {
namespace {

constexpr std::u16string_view kLetters = u"abfnrtv";
constexpr std::u16string_view kControls = u"\a\b\f\n\r\t\v";

bool isHexDigit(QChar c) {
  return c.unicode() < 0x80 && std::isxdigit(c.unicode());
}

bool isOctalDigit(QChar c) {
  return c >= QLatin1Char('0') && c <= QLatin1Char('7');
}

/// The number at `at`, which moves behind it. As many digits as there are belong to it.
char16_t readNumber(const QString& text, qsizetype& at, int base) {
  const auto isDigit = base == 16 ? &isHexDigit : &isOctalDigit;
  const qsizetype start = at;
  while (at < text.size() && isDigit(text[at])) ++at;
  return static_cast<char16_t>(text.mid(start, at - start).toUInt(nullptr, base));
}

/// What the escape at `at`, the place behind its backslash, stands for.
QString readEscape(const QString& text, qsizetype& at) {
  if (at >= text.size()) return {};
  if (isOctalDigit(text[at])) return QChar(readNumber(text, at, 8));
  const QChar letter = text[at++];
  if (letter == QLatin1Char('x')) return QChar(readNumber(text, at, 16));
  const auto control = kLetters.find(letter.unicode());
  if (control != std::u16string_view::npos) return QChar(kControls[control]);
  return letter == QLatin1Char('"') || letter == QLatin1Char('\\') ? QString(letter) : QString();
}

bool isNameLetter(char c) {
  return c == '_' || std::isalnum(static_cast<unsigned char>(c));
}

std::string variable(const std::string& name, const FileURL& home) {
  if (name == "HOME") return home.path();
  const char* value = std::getenv(name.c_str());
  return value ? value : "";
}

}  // namespace

std::optional<std::string> ConfigurationEscapes::readQt(const QString& text) {
  QString value;
  bool isQuoted = false;
  for (qsizetype at = 0; at < text.size();) {
    const QChar c = text[at++];
    if (c == QLatin1Char('"')) {
      isQuoted = !isQuoted;
    } else if (c == QLatin1Char('\\')) {
      value += readEscape(text, at);
    } else if (c == QLatin1Char(',') && !isQuoted) {
      return std::nullopt;
    } else {
      value += c;
    }
  }
  return value.toStdString();
}

QString ConfigurationEscapes::writeQt(const QString& value) {
  QString text;
  bool needsQuotes = value.startsWith(QLatin1Char(' ')) || value.endsWith(QLatin1Char(' '));
  bool followsNumber = false;
  for (const QChar c : value) {
    const bool isPlain = c.unicode() >= 0x20 && c.unicode() < 0x7f;
    needsQuotes = needsQuotes || QStringLiteral(";,=").contains(c);
    if (!isPlain || (followsNumber && isHexDigit(c))) {
      // Beyond ASCII too: older versions of the library take such bytes for Latin-1, newer ones for UTF-8.
      text += QStringLiteral("\\x") + QString::number(c.unicode(), 16);
      followsNumber = true;
      continue;
    }
    if (c == QLatin1Char('"') || c == QLatin1Char('\\')) text += QLatin1Char('\\');
    text += c;
    followsNumber = false;
  }
  return needsQuotes ? QLatin1Char('"') + text + QLatin1Char('"') : text;
}

std::string ConfigurationEscapes::readBackslashes(const QString& text) {
  std::string value;
  const std::string bytes = text.toStdString();
  for (size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] != '\\' || at + 1 == bytes.size()) {
      value += bytes[at];
      continue;
    }
    switch (const char letter = bytes[++at]) {
      case 's':
        value += ' ';
        break;
      case 'n':
        value += '\n';
        break;
      case 'r':
        value += '\r';
        break;
      case 't':
        value += '\t';
        break;
      case '\\':
        value += '\\';
        break;
      case 'x': {
        const std::string digits = bytes.substr(at + 1, 2);
        value += static_cast<char>(std::strtoul(digits.c_str(), nullptr, 16));
        at += digits.size();
        break;
      }
      default:
        value.append({'\\', letter});
    }
  }
  return value;
}

std::string ConfigurationEscapes::expandVariables(const std::string& value, const FileURL& home) {
  std::string result;
  for (size_t at = 0; at < value.size();) {
    if (value[at] != '$' || at + 1 == value.size()) {
      result += value[at++];
    } else if (value[++at] == '$') {
      result += value[at++];
    } else {
      const bool isBraced = value[at] == '{';
      if (isBraced) ++at;
      const auto end = std::find_if_not(value.begin() + static_cast<ptrdiff_t>(at), value.end(), &isNameLetter);
      const std::string name(value.begin() + static_cast<ptrdiff_t>(at), end);
      at += name.size();
      if (isBraced && at < value.size() && value[at] == '}') ++at;
      result += name.empty() ? "$" : variable(name, home);
    }
  }
  return result;
}

}  // namespace quillmere
