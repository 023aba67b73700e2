#include "model/ScreenshotTransfer.h"

#include <QtCore/QMimeDatabase>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "reading/PictureBytes.h"
#include "reading/PictureCrop.h"
#include "records/ScreenshotNaming.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;
namespace fs = std::filesystem;

/// A crop keeps every pixel as it was.
constexpr PictureFormat kCropFormat = PictureFormat::png;
constexpr std::chrono::hours kKept(24);

std::error_code writeFile(const fs::path& path, const QByteArray& data) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(data.constData(), data.size());
  file.close();
  return file ? std::error_code() : std::error_code(errno != 0 ? errno : EIO, std::generic_category());
}

}  // namespace

QString imageContentType(PictureFormat format) {
  return QString::fromLatin1(traits(format).contentType);
}

QString imageContentType(const FileURL& url) {
  if (const auto format = formatOfExtension(url.pathExtension())) return imageContentType(*format);
  // As its person may have renamed it.
  const QString name = QStringLiteral("x.") + QString::fromStdString(url.pathExtension());
  const QString type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).name();
  return type.startsWith(QLatin1String("image/")) ? type : imageContentType(PictureFormat::png);
}

std::string transferName(const std::optional<QString>& suggestedName, const FileURL& url, bool isCropped) {
  const auto cleaned = suggestedName ? sanitizedFileStem(*suggestedName) : std::nullopt;
  const std::string stem = cleaned ? cleaned->toStdString() : url.stem();
  const std::string extension = isCropped ? fileExtension(kCropFormat) : url.pathExtension();
  return extension.empty() ? stem : stem + "." + extension;
}

QString PromptPreviewTransfer::contentType() const {
  return crop ? imageContentType(kCropFormat) : imageContentType(url);
}

Result<QByteArray, Failure> PromptPreviewTransfer::data(PictureReading& pictures) const {
  if (!crop) {
    const auto bytes = pictureBytes(url);
    if (!bytes) return Failure(OperationError::unreadable);
    return QByteArray(bytes->data(), static_cast<qsizetype>(bytes->size()));
  }
  const auto cropped = ImageOperations::crop(crop->image, crop->rect);
  if (!cropped) return Failure(cropped.reason());
  const auto encoded = pictures.encoded(*cropped, kCropFormat);
  if (!encoded) return Failure(encoded.reason());
  return *encoded;
}

FileURL TransferFiles::folderOf(const UUID& record) const {
  return folder_.appending(record.toString(QUuid::WithoutBraces).toStdString());
}

Result<FileURL, Failure> TransferFiles::file(const UUID& record, const PromptPreviewTransfer& transfer,
                                             PictureReading& pictures) const {
  // Nothing is handed over that is no longer there, or is a link to something else.
  const auto status = transfer.crop ? std::nullopt : fileStatus(transfer.url);
  if (!transfer.crop && !(status && status->isRegular())) return Failure(OperationError::unreadable);
  if (transfer.isFile()) return transfer.url;
  removeOld();
  std::error_code error;
  fs::create_directories(folder_.path(), error);
  const FileURL own = folderOf(record).appending(UUID::createUuid().toString(QUuid::WithoutBraces).toStdString());
  if (!error) fs::create_directories(own.path(), error);
  // Screenshots are nobody else's business.
  for (const FileURL& folder : {folder_, own.parent(), own}) {
    if (!error) fs::permissions(folder.path(), fs::perms::owner_all, error);
  }
  if (error) return Failure(error);
  FileURL place = own.appending(transfer.filename);
  if (transfer.crop) {
    const auto bytes = transfer.data(pictures);
    if (!bytes) return bytes.reason();
    error = writeFile(place.path(), *bytes);
  } else {
    const bool isCopied = copyFile(transfer.url, place) == CopyResult::done;
    if (!isCopied) error = std::make_error_code(std::errc::io_error);
  }
  if (!error) fs::permissions(place.path(), fs::perms::owner_read | fs::perms::owner_write, error);
  if (!error) return place;
  std::error_code ignored;
  fs::remove_all(own.path(), ignored);
  fs::remove(own.parent().path(), ignored);  // where it holds no other
  return Failure(error);
}

void TransferFiles::remove(const UUID& record) const {
  std::error_code ignored;
  fs::remove_all(folderOf(record).path(), ignored);
}

void TransferFiles::removeAll() const {
  std::error_code error;
  for (fs::directory_iterator entry(folder_.path(), error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    fs::remove_all(entry->path(), ignored);
  }
}

void TransferFiles::removeOld() const {
  std::error_code error;
  const auto now = fs::file_time_type::clock::now();
  for (fs::directory_iterator entry(folder_.path(), error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    const auto written = fs::last_write_time(entry->path(), ignored);
    if (!ignored && now - written > kKept) fs::remove_all(entry->path(), ignored);
  }
}

}  // namespace quillmere
