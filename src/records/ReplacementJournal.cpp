#include "records/ReplacementJournal.h"

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <cerrno>
#include <filesystem>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

QString coded(const FileURL& url) {
  return QString::fromStdString(url.coded());
}
std::optional<FileURL> fileURL(const QJsonValue& value) {
  return FileURL::fromCoded(value.toString().toStdString());
}

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

std::vector<Replacement> ReplacementJournal::load() const {
  const auto text = readFile(file_);
  std::vector<Replacement> result;
  if (!text) return result;
  const QJsonArray entries = QJsonDocument::fromJson(QByteArray::fromStdString(*text)).array();
  for (const auto& value : entries) {
    const QJsonObject entry = value.toObject();
    const auto id = uuidFromText(entry["id"].toString().toStdString());
    const auto original = fileURL(entry["original"]);
    const auto temporary = fileURL(entry["temporary"]);
    // As text: a number would lose the upper bits of a long one.
    const uint64_t file = entry["file"].toString().toULongLong();
    if (id && original && temporary) result.push_back({*id, *original, *temporary, file});
  }
  return result;
}

bool ReplacementJournal::save(const std::vector<Replacement>& replacements) const {
  const FileURL fresh = file_.parent().appending(file_.lastPathComponent() + ".new");
  if (replacements.empty()) {
    ::unlink(fresh.c_str());  // of a save that was cut off
    return TEMP_FAILURE_RETRY(::unlink(file_.c_str())) == 0 || errno == ENOENT;
  }
  QJsonArray entries;
  for (const Replacement& one : replacements) {
    entries.append(QJsonObject{{QStringLiteral("id"), QString::fromStdString(uuidText(one.id))},
                               {QStringLiteral("original"), coded(one.original)},
                               {QStringLiteral("temporary"), coded(one.temporary)},
                               {QStringLiteral("file"), QString::number(one.file)}});
  }
  std::error_code ignored;  // a folder that cannot be made shows when the file is opened
  std::filesystem::create_directories(file_.parent().path(), ignored);
  const bool isSaved = writeNew(fresh, QJsonDocument(entries).toJson(QJsonDocument::Compact)) &&
                       TEMP_FAILURE_RETRY(::rename(fresh.c_str(), file_.c_str())) == 0 && flushFolder(file_.parent());
  if (!isSaved) ::unlink(fresh.c_str());
  return isSaved;
}

}  // namespace quillmere
