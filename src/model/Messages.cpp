#include "model/Messages.h"

#include "foundation/Localized.h"

namespace quillmere {

QString message(const BackgroundIssue& issue) {
  switch (issue.kind) {
    case BackgroundIssue::Kind::expiredScreenshotsNotTrashed:
      return localized("%lld expired screenshots couldn’t be moved to Trash. Quillmere will try again.", {issue.count});
    case BackgroundIssue::Kind::expiredScreenshotsKept:
      return localized(
          "%lld expired screenshots were kept because Quillmere couldn’t tell whether they had been replaced.",
          {issue.count});
    case BackgroundIssue::Kind::automaticRenameFailed:
      return localized("A screenshot was kept with its original filename because automatic renaming failed.");
    case BackgroundIssue::Kind::automaticExtractionFailed:
      return localized("A screenshot was kept whole because the window extracted from it couldn’t be saved.");
    case BackgroundIssue::Kind::recordsNotSaved:
      return localized("Quillmere couldn’t save its screenshot list. Recent changes may be lost when Quillmere quits.");
    case BackgroundIssue::Kind::recordsWaiting:
      return localized("Quillmere is waiting for the disk to save its screenshot list.");
    case BackgroundIssue::Kind::recordsReadOnly:
      return localized(
          "Quillmere couldn’t back up its screenshot list, so it isn’t saving changes. Free up disk space, then "
          "dismiss this message to try again.");
  }
  return {};
}

}  // namespace quillmere
