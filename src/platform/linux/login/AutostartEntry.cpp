#include "platform/linux/login/AutostartEntry.h"

#include <algorithm>

#include "platform/linux/common/ConfigurationText.h"

namespace quillmere::AutostartEntry {
namespace {

/// As a value of any key: the reader undoes it first.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    switch (byte) {
      case '\\':
        result += "\\\\";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\t':
        result += "\\t";
        break;
      case '\r':
        result += "\\r";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

/// As one word of a command, which is undone second.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '`' || byte == '$' || byte == '\\') result += '\\';
    if (byte == '%') result += '%';  // one alone begins a field
    result += byte;
  }
  return result + "\"";
}

std::string unescaped(std::string_view value) {
  std::string result;
  for (size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      result += value[i];
      continue;
    }
    switch (value[++i]) {
      case 's':
        result += ' ';
        break;
      case 'n':
        result += '\n';
        break;
      case 't':
        result += '\t';
        break;
      case 'r':
        result += '\r';
        break;
      default:
        result += value[i];
    }
  }
  return result;
}

std::string firstWord(std::string_view command) {
  std::string word;
  bool isQuoted = false;
  for (size_t i = 0; i < command.size(); ++i) {
    const char byte = command[i];
    if (byte == '"') {
      isQuoted = !isQuoted;
    } else if (byte == ' ' && !isQuoted) {
      break;
    } else if ((byte == '\\' && isQuoted) || byte == '%') {
      if (++i < command.size()) word += command[i];
    } else {
      word += byte;
    }
  }
  return word;
}

std::optional<std::string> value(const std::string& text, const char* key) {
  return configurationValue(text, {"Desktop Entry", key});
}

bool is(const std::string& text, const char* key, const char* wanted) {
  return value(text, key).value_or(std::string()) == wanted;
}

bool namesAny(const std::string& text, const char* key, const QStringList& desktops) {
  const QStringList named =
      QString::fromStdString(value(text, key).value_or(std::string())).split(QLatin1Char(';'), Qt::SkipEmptyParts);
  return std::any_of(desktops.begin(), desktops.end(), [&](const QString& name) { return named.contains(name); });
}

std::string entry(const std::string& program, const char* more) {
  return "[Desktop Entry]\nType=Application\nName=Quillmere\nComment=Screenshot now, decide later\nExec=" +
         escaped(quoted(program)) + " --autostart\nTryExec=" + escaped(program) +
         "\nIcon=com.quillmere.app\nTerminal=false\nStartupNotify=false\n" + more;
}

}  // namespace

std::string startingAtLogin(const std::string& program) {
  return entry(program, "");
}

std::string hidden(const std::string& program) {
  return entry(program, "Hidden=true\n");
}

bool isOn(const std::string& text, const Session& session) {
  if (is(text, "Hidden", "true") || is(text, "X-GNOME-Autostart-enabled", "false")) return false;
  if (value(text, "OnlyShowIn") && !namesAny(text, "OnlyShowIn", session.desktops)) return false;
  if (namesAny(text, "NotShowIn", session.desktops)) return false;
  const auto tried = value(text, "TryExec");
  if (tried && !tried->empty() && !session.canStart(unescaped(*tried))) return false;
  const std::string program = programOf(text);
  return !program.empty() && session.canStart(program);
}

std::string programOf(const std::string& text) {
  return firstWord(unescaped(value(text, "Exec").value_or(std::string())));
}

}  // namespace quillmere::AutostartEntry
