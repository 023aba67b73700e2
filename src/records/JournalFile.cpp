#include "records/JournalFile.h"

#include <unistd.h>
#include <QtCore/QJsonDocument>
#include <cerrno>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {

QJsonArray JournalFile::load() const {
  const auto text = readFile(file_);
  return text ? QJsonDocument::fromJson(QByteArray::fromStdString(*text)).array() : QJsonArray();
}

bool JournalFile::save(const QJsonArray& entries) const {
  if (entries.empty()) {
    removeUnfinished(file_);
    return TEMP_FAILURE_RETRY(::unlink(file_.c_str())) == 0 || errno == ENOENT;
  }
  return replaceFile(file_, QJsonDocument(entries).toJson(QJsonDocument::Compact).toStdString());
}

QString JournalFile::coded(const FileURL& url) {
  return QString::fromStdString(url.coded());
}

std::optional<FileURL> JournalFile::fileURL(const QJsonValue& value) {
  return FileURL::fromCoded(value.toString().toStdString());
}

}  // namespace quillmere
