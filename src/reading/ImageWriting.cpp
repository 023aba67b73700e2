#include "reading/ImageWriting.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

#include "foundation/FileCopy.h"
#include "foundation/Localized.h"
#include "records/ScreenshotNaming.h"
#include "records/UUID.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

/// What the person's mask leaves of it, as of any file that a program saves.
constexpr mode_t kUsualMode = 0666;

std::error_code lastError() {
  return {errno != 0 ? errno : EIO, std::generic_category()};
}

/// Writes a file at a name that must be free, down to the disk. Whatever fails, nothing is left there.
std::error_code writeWithoutReplacing(const FileURL& url, const QByteArray& data, mode_t mode) {
  const auto descriptor =
      static_cast<int>(TEMP_FAILURE_RETRY(::open(url.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode)));
  if (descriptor < 0) return lastError();
  std::error_code error;
  if (!writeAll(descriptor, data.constData(), static_cast<size_t>(data.size())) ||
      TEMP_FAILURE_RETRY(::fsync(descriptor)) != 0) {
    error = lastError();
  }
  // Servers tell only here that there was no room. After an interruption the file is closed all the same.
  if (::close(descriptor) != 0 && errno != EINTR && !error) error = lastError();
  if (error) ::unlink(url.c_str());
  return error;
}

/// Beside `url` under a hidden name of its own. Gives its place.
Result<FileURL, Failure> writeHidden(const QByteArray& data, const FileURL& url, const std::string& extension,
                                     mode_t mode) {
  constexpr int kTries = 8;
  for (int i = 0; i < kTries; ++i) {
    const std::string name =
        std::string(ImageOperations::kReplacementPrefix) + uuidText(UUID::createUuid()) + "." + extension;
    const FileURL place = url.parent().appending(name);
    const std::error_code error = writeWithoutReplacing(place, data, mode);
    if (error == std::errc::file_exists) continue;
    if (error) return Failure(error);
    return place;
  }
  return Failure(OperationError::destinationExists);
}

/// Some file systems have no second names for a file.
bool hasNoLinks(int error) {
  return error == EPERM || error == ENOSYS || error == EOPNOTSUPP || error == EMLINK || error == EXDEV;
}

/// Gives a file that was written whole its name, which must be free: nobody ever sees a part of it there, whatever ends
/// the program meanwhile.
std::error_code nameWithoutReplacing(const FileURL& written, const FileURL& url, const QByteArray& data) {
  if (::link(written.c_str(), url.c_str()) == 0) return {};
  return hasNoLinks(errno) ? writeWithoutReplacing(url, data, kUsualMode) : lastError();
}

/// The permissions of the file that is to be replaced: a crop is no less private than the whole.
mode_t modeOf(const FileURL& url) {
  struct stat status {};
  constexpr mode_t kPermissions = 0777;
  return ::stat(url.c_str(), &status) == 0 ? status.st_mode & kPermissions : kUsualMode;
}

}  // namespace

PictureFormat ImageOperations::imageType(const FileURL& url) {
  return formatOfExtension(url.pathExtension()).value_or(PictureFormat::png);
}

Result<FileURL, Failure> ImageOperations::writeNewFile(const QByteArray& data, const FileURL& url,
                                                       const QString& stem) {
  constexpr int kMostNumber = 999;
  const std::string extension = "." + fileExtension(PictureFormat::png);
  const std::string cleaned = sanitizedFileStem(stem).value_or(localized("filename.fallback-stem")).toStdString();
  const auto hidden = writeHidden(data, url, fileExtension(PictureFormat::png), kUsualMode);
  if (!hidden) return hidden.reason();
  Result<FileURL, Failure> result = Failure(OperationError::destinationExists);
  for (int n = 0; n <= kMostNumber; ++n) {
    const std::string number = n > 0 ? " (" + std::to_string(n) + ")" : std::string();
    const FileURL place = url.parent().appending(cleaned + number + extension);
    const std::error_code error = nameWithoutReplacing(*hidden, place, data);
    if (error == std::errc::file_exists) continue;
    result = error ? Result<FileURL, Failure>(Failure(error)) : Result<FileURL, Failure>(place);
    break;
  }
  ::unlink(hidden->c_str());
  // The file is whole either way, and some file systems cannot flush a folder.
  flushFolder(url.parent());
  return result;
}

Result<FileURL, Failure> ImageOperations::writeReplacement(const QByteArray& data, const FileURL& original) {
  const std::string ownExtension = original.pathExtension();
  const std::string extension = ownExtension.empty() ? fileExtension(imageType(original)) : ownExtension;
  return writeHidden(data, original, extension, modeOf(original));
}

}  // namespace quillmere
