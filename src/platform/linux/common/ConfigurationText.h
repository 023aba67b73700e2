#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmere {

/// A value's place in a text of the "[group]" and "key=value" form.
struct ConfigurationKey {
  std::string group;  ///< empty: before any group
  std::string name;
};

/// The value as it stands, escapes and all, less the white space around it; none when it is not set. Of several the
/// last counts, as it does for the tools.
std::optional<std::string> configurationValue(std::string_view text, const ConfigurationKey& key);

/// The text with this value, or without the key's line for none; every other byte stays. `value` must be one line.
std::string withConfigurationValue(const std::string& text, const ConfigurationKey& key,
                                   const std::optional<std::string>& value);

/// Whether the options that some tools put after a key, such as "[$e]", ask for variables to be expanded.
bool expandsVariables(std::string_view text, const ConfigurationKey& key);

}  // namespace quillmere
