#pragma once

#include <functional>
#include <optional>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// What tells whether a file is still the one that was read.
struct FileStamp {
  std::optional<FileIdentity> identity;
  Date modified;
  bool operator==(const FileStamp&) const = default;
};
FileStamp fileStamp(const FileURL& url, const std::function<std::optional<FileIdentity>(const FileURL&)>& identity);

}  // namespace quillmere
