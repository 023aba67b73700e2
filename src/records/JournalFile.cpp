#include "records/JournalFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QJsonDocument>
#include <cerrno>
#include <filesystem>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

bool writeNew(const FileURL& file, const QByteArray& bytes) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW;
  const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(::open(file.c_str(), kFlags, 0600)));
  if (descriptor < 0) return false;
  const bool isWritten = writeAll(descriptor, bytes.constData(), static_cast<size_t>(bytes.size())) &&
                         TEMP_FAILURE_RETRY(::fsync(descriptor)) == 0;
  ::close(descriptor);
  return isWritten;
}

}  // namespace

QJsonArray JournalFile::load() const {
  const auto text = readFile(file_);
  return text ? QJsonDocument::fromJson(QByteArray::fromStdString(*text)).array() : QJsonArray();
}

bool JournalFile::save(const QJsonArray& entries) const {
  const FileURL fresh = file_.parent().appending(file_.lastPathComponent() + ".new");
  if (entries.empty()) {
    ::unlink(fresh.c_str());  // of a save that was cut off
    return TEMP_FAILURE_RETRY(::unlink(file_.c_str())) == 0 || errno == ENOENT;
  }
  std::error_code ignored;  // a folder that cannot be made shows when the file is opened
  std::filesystem::create_directories(file_.parent().path(), ignored);
  const bool isSaved = writeNew(fresh, QJsonDocument(entries).toJson(QJsonDocument::Compact)) &&
                       TEMP_FAILURE_RETRY(::rename(fresh.c_str(), file_.c_str())) == 0 && flushFolder(file_.parent());
  if (!isSaved) ::unlink(fresh.c_str());
  return isSaved;
}

QString JournalFile::coded(const FileURL& url) {
  return QString::fromStdString(url.coded());
}

std::optional<FileURL> JournalFile::fileURL(const QJsonValue& value) {
  return FileURL::fromCoded(value.toString().toStdString());
}

}  // namespace quillmere
