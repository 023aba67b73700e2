#include "platform/linux/common/ConfigurationText.h"

#include <vector>

namespace quillmere {
namespace {

/// A line that sets the key, as offsets in the text.
struct Assignment {
  size_t lineStart = 0;
  size_t lineEnd = 0;  ///< after its line break
  size_t valueStart = 0;
  size_t valueEnd = 0;
  bool expandsVariables = false;
};

struct Place {
  std::vector<Assignment> assignments;
  std::optional<size_t> newLine;  ///< where a line that sets the key can be put; none without its group
  bool isSet = false;
};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const auto start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return text.substr(0, 0);
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

/// "[Save]", and "[Save][$i]" with options, but not "[Save][Sub]", which is a group of its own.
bool isHeaderOf(std::string_view line, const std::string& group) {
  const std::string header = "[" + group + "]";
  if (!line.starts_with(header)) return false;
  line.remove_prefix(header.size());
  return line.empty() || line.starts_with("[$");
}

void readLine(std::string_view text, size_t start, size_t end, const ConfigurationKey& key, Place& place) {
  const std::string_view line = text.substr(start, end - start);
  const auto equals = line.find('=');
  std::string_view name = trimmed(line.substr(0, equals));
  std::string_view options;
  if (const auto at = name.find("[$"); at != std::string_view::npos) {
    options = name.substr(at);
    name = name.substr(0, at);
  }
  if (name != key.name) return;
  if (equals == std::string_view::npos) {
    // "key[$d]" says that the key was deleted; a new line counts only after it.
    if (options.find('d') == std::string_view::npos) return;
    place.isSet = false;
    place.newLine = end;
    return;
  }
  const std::string_view value = trimmed(line.substr(equals + 1, line.find('\n') - equals - 1));
  Assignment assignment{start, end, 0, 0, options.find('e') != std::string_view::npos};
  assignment.valueStart = value.empty() ? start + equals + 1 : static_cast<size_t>(value.data() - text.data());
  assignment.valueEnd = assignment.valueStart + value.size();
  place.assignments.push_back(assignment);
  place.isSet = true;
}

Place find(std::string_view text, const ConfigurationKey& key) {
  Place place;
  bool isInGroup = key.group.empty();
  if (isInGroup) place.newLine = 0;
  for (size_t start = 0; start < text.size();) {
    const auto lineBreak = text.find('\n', start);
    const size_t end = lineBreak == std::string_view::npos ? text.size() : lineBreak + 1;
    const std::string_view line = trimmed(text.substr(start, lineBreak - start));
    if (line.starts_with('[')) {
      isInGroup = !key.group.empty() && isHeaderOf(line, key.group);
      if (isInGroup && !place.newLine) place.newLine = end;
    } else if (isInGroup) {
      readLine(text, start, end, key, place);
    }
    start = end;
  }
  return place;
}

std::string lineBreakOf(const std::string& text) {
  const auto first = text.find('\n');
  return first != std::string::npos && first > 0 && text[first - 1] == '\r' ? "\r\n" : "\n";
}

std::string withNewLine(std::string text, const ConfigurationKey& key, std::optional<size_t> at,
                        const std::string& value) {
  const std::string lineBreak = lineBreakOf(text);
  std::string added = key.name + "=" + value + lineBreak;
  if (!at) {
    added.insert(0, "[" + key.group + "]" + lineBreak);
    if (!text.empty()) added.insert(0, lineBreak);
    at = text.size();
  }
  const bool isMidLine = *at > 0 && text[*at - 1] != '\n';
  return text.insert(*at, isMidLine ? lineBreak + added : added);
}

}  // namespace

std::optional<std::string> configurationValue(std::string_view text, const ConfigurationKey& key) {
  const Place place = find(text, key);
  if (!place.isSet) return std::nullopt;
  const Assignment& last = place.assignments.back();
  return std::string(text.substr(last.valueStart, last.valueEnd - last.valueStart));
}

std::string withConfigurationValue(const std::string& text, const ConfigurationKey& key,
                                   const std::optional<std::string>& value) {
  const Place place = find(text, key);
  std::string result = text;
  if (!value) {
    for (auto line = place.assignments.rbegin(); line != place.assignments.rend(); ++line) {
      result.erase(line->lineStart, line->lineEnd - line->lineStart);
    }
    return result;
  }
  if (!place.isSet) return withNewLine(std::move(result), key, place.newLine, *value);
  const Assignment& last = place.assignments.back();
  return result.replace(last.valueStart, last.valueEnd - last.valueStart, *value);
}

bool expandsVariables(std::string_view text, const ConfigurationKey& key) {
  const Place place = find(text, key);
  return place.isSet && place.assignments.back().expandsVariables;
}

}  // namespace quillmere
