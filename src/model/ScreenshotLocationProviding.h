#pragma once

#include <QtCore/QString>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// Where the desktop's own capture tool saves screenshots, and changing it. Main thread; each operation reads or writes
/// one small configuration.
class ScreenshotLocationProviding {
 public:
  virtual ~ScreenshotLocationProviding() = default;
  /// The folder that the tool saves to now: what its configuration names if that is a folder, else the tool's default.
  /// None where even that cannot be told.
  virtual std::optional<FileURL> folder() = 0;
  /// The value as it stands in the tool's configuration; none when it is not set.
  virtual std::optional<QString> rawValue() = 0;
  /// The form in which the tool keeps this folder.
  virtual QString rawValueOf(const FileURL& folder) = 0;
  /// Whether the tool's folder can be changed at all.
  virtual bool canChange() = 0;
  /// Writes the value exactly as given, none to remove it, and leaves all else that stands there. True when that was
  /// done; otherwise the configuration is as it was.
  virtual bool tryToSetRawValue(const std::optional<QString>& value) = 0;
};

}  // namespace quillmere
