#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Date.h"
#include "foundation/FileURL.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// Reads the list file. A damaged or newer list is the person's memory of what is Temporary: it is never overwritten
/// before a copy of it exists.
struct ScreenshotRecordStore {
  enum class BackupReason {
    backup,      ///< read, but holds data that this version would lose at its next save
    unreadable,  ///< could not be read at all
  };
  struct LoadResult {
    std::vector<ScreenshotItem> items;
    bool isReadOnly = false;  ///< no copy could be made, so nothing may be saved
  };

  FileURL fileURL;

  /// Never fails: what cannot be read is copied aside and left out.
  LoadResult load(Date now) const;
  /// Copies the file beside itself, never over anything, as "<stem>.<reason>-yyyyMMdd-HHmmss.json" in local time, with
  /// "-2" to "-100" for further tries. Gives the copy's place, or none.
  std::optional<FileURL> backup(BackupReason reason, Date now) const;
};

}  // namespace quillmere
