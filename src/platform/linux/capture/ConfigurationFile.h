#pragma once

#include <optional>
#include <string>

#include "foundation/FileURL.h"
#include "platform/linux/common/ConfigurationText.h"

namespace quillmere {

/// Another program's configuration file, of which one value is read and written.
class ConfigurationFile {
 public:
  explicit ConfigurationFile(FileURL url) : url_(std::move(url)) {}

  bool exists() const;
  /// Empty when there is no file; none when it cannot be read.
  std::optional<std::string> text() const;
  /// Sets the value, or removes its line for none. The file is replaced in one step, or made with its folder. False
  /// when that fails or the value does not read back as it was given; the file is then as it was.
  bool setValue(const ConfigurationKey& key, const std::optional<std::string>& value) const;

 private:
  FileURL url_;
};

}  // namespace quillmere
