#include "platform/linux/files/SyncClientNames.h"

#include <algorithm>
#include <string>

namespace quillmere {
namespace {

bool isHex(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool isAlphanumeric(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
}

/// What stands between the two; empty where they are not there.
std::string_view between(std::string_view text, std::string_view beginning, std::string_view end) {
  if (text.size() < beginning.size() + end.size() || !text.starts_with(beginning) || !text.ends_with(end)) return {};
  return text.substr(beginning.size(), text.size() - beginning.size() - end.size());
}

}  // namespace

bool isNameWhileReceived(std::string_view temporaryName, std::string_view name) {
  const std::string own(name);
  constexpr size_t kRandomLetters = 6;
  constexpr size_t kRandomDigits = 8;
  // Syncthing; a name that is too long for it has a hash in its place.
  if (!between(temporaryName, ".syncthing.", ".tmp").empty()) return true;
  if (isHex(between(temporaryName, "." + own + ".~", ""))) return true;  // Nextcloud, ownCloud
  const std::string_view letters = between(temporaryName, "." + own + ".", "");
  if (letters.size() == kRandomLetters && isAlphanumeric(letters)) return true;  // rsync
  const std::string_view digits = between(temporaryName, own + ".", ".partial");
  if (digits.size() == kRandomDigits && isHex(digits)) return true;  // rclone
  return !between(temporaryName, ".unison." + own + ".", ".unison.tmp").empty();
}

}  // namespace quillmere
