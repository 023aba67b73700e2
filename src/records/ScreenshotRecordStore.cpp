#include "records/ScreenshotRecordStore.h"

#include <QtCore/QLocale>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "records/ScreenshotCoding.h"

namespace quillmere {
namespace {

constexpr int kMaxBackupTries = 100;

std::string reasonText(ScreenshotRecordStore::BackupReason reason) {
  return reason == ScreenshotRecordStore::BackupReason::backup ? "backup" : "unreadable";
}

}  // namespace

ScreenshotRecordStore::LoadResult ScreenshotRecordStore::load(Date now) const {
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
  const FileURL source = fileURL.resolvingSymlinks().value_or(fileURL);
  for (int attempt = 1; attempt <= kMaxBackupTries; ++attempt) {
    const std::string number = attempt == 1 ? std::string() : "-" + std::to_string(attempt);
    const FileURL copy = fileURL.parent().appending(name + number + ".json");
    switch (copyFile(source, copy)) {
      case CopyResult::done:
        return copy;
      case CopyResult::destinationExists:
        continue;
      case CopyResult::failed:
        return std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace quillmere
