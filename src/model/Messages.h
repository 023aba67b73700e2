#pragma once

#include <QtCore/QString>
#include <optional>

#include "records/UUID.h"

namespace quillmere {

/// Where a failure that the person caused is shown: where the person acted.
enum class ErrorScope { popup, inbox, settings };

/// An error that the person must read. At most one stands in each scope.
struct ScopedError {
  UUID id;  ///< new for each error, so that a repeated one shows again
  QString title;
  QString message;
  bool operator==(const ScopedError&) const = default;
};

/// The one Inbox banner for a failure of work that nobody was watching.
struct BackgroundIssue {
  enum class Kind {
    expiredScreenshotsNotTrashed,
    expiredScreenshotsKept,  ///< it could not be told whether their files are still the same
    automaticRenameFailed,
    automaticExtractionFailed,
    recordsNotSaved,
    recordsWaiting,  ///< the disk does not answer
    recordsReadOnly,
  };
  Kind kind;
  int count = 0;  ///< of the expired screenshots
  bool operator==(const BackgroundIssue&) const = default;
};
QString message(const BackgroundIssue& issue);

/// The state of a requested download.
enum class DownloadState {
  requesting,
  downloading,
  stalled,  ///< it takes long; the sync client still has the request
  refused,
};

enum class AnnouncementPriority {
  low,   ///< results of the person's own action, and changes in the background
  high,  ///< what must be heard
};

}  // namespace quillmere
