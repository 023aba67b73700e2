#include "records/ScreenshotRecordStore.h"

#include <QtCore/QLocale>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "records/ListParts.h"
#include "records/ScreenshotCoding.h"

namespace quillmere {
namespace {

std::string reasonText(ScreenshotRecordStore::BackupReason reason) {
  return reason == ScreenshotRecordStore::BackupReason::backup ? "backup" : "unreadable";
}

}  // namespace

ScreenshotRecordStore::LoadResult ScreenshotRecordStore::load(Date now) const {
  if (auto list = readInParts(fileURL.resolvingSymlinks().value_or(fileURL))) return {std::move(*list)};
  auto bytes = readFile(fileURL.resolvingSymlinks().value_or(fileURL));
  // What could not be read must not be written over.
  if (!bytes && isAbsent(fileURL)) return {};
  if (bytes) {
    if (auto list = decodeList(*bytes)) {
      const bool isWhole = list->dropped == 0 && list->version <= kListVersion;
      return {std::move(list->items), !isWhole && !backup(BackupReason::backup, now)};
    }
  }
  return {{}, !backup(BackupReason::unreadable, now)};
}

std::optional<FileURL> ScreenshotRecordStore::backup(BackupReason reason, Date now) const {
  const QString moment = QLocale::c().toString(now.toDateTime().toLocalTime(), QStringLiteral("yyyyMMdd-HHmmss"));
  const std::string name = fileURL.stem() + "." + reasonText(reason) + "-" + moment.toStdString();
  return copyAside(fileURL.resolvingSymlinks().value_or(fileURL), fileURL.parent(), name);
}

}  // namespace quillmere
