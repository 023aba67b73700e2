#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <optional>
#include <string>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/PictureReading.h"
#include "records/FileIdentity.h"
#include "records/PictureFormat.h"
#include "records/UUID.h"

namespace quillmere {

/// What other applications are told that a picture is.
QString imageContentType(PictureFormat format);
/// The MIME type that a file's extension stands for; PNG for one that stands for no picture.
QString imageContentType(const FileURL& url);

/// How a transferred picture is named: by the cleaned suggestion with the extension of the file, or of a PNG if it is a
/// crop; by the file's own stem where the suggestion is absent or cleans to nothing.
std::string transferName(const std::optional<QString>& suggestedName, const FileURL& url, bool isCropped);

/// What the popup shows, on its way into another application. Any thread.
struct PromptPreviewTransfer {
  /// The part of a picture that is held in memory.
  struct Crop {
    QImage image;
    QRectF rect;  ///< pixels of `image`
  };
  FileURL url;
  std::optional<Crop> crop;
  std::string filename;                                 ///< the name it arrives under
  std::optional<FileIdentity> identity = std::nullopt;  ///< of the file that is meant

  /// The file itself can be handed over.
  bool isFile() const { return !crop && filename == url.lastPathComponent(); }
  QString contentType() const;
  /// The picture's bytes: of the file, or of the crop as a PNG.
  Result<QByteArray, ImageOperations::Failure> data(PictureReading& pictures) const;
};

/// What another application can be given: a file under the name that it is to arrive under.
struct PreparedTransfer {
  FileURL file;
  QString contentType;
};

/// A picture for the clipboard.
struct ScreenshotPasteboardItem {
  std::optional<FileURL> url;  ///< none for a picture that is in no file
  QString contentType;
  QByteArray data;
};

/// The clipboard, or whatever takes what is copied.
class Pasteboard {
 public:
  virtual ~Pasteboard() = default;
  virtual void write(const ScreenshotPasteboardItem& item) = 0;
  virtual void write(const QString& text) = 0;
};

/// Where pictures are put that another application is to read although no file of theirs exists. Each lies in a folder
/// of its own, so that it can have any name, and stays while its record does, since mail reads what it is given when it
/// is sent; what is older than a day is removed with the next one. Only their owner can read them. Any thread.
class TransferFiles {
 public:
  TransferFiles() = default;
  explicit TransferFiles(FileURL folder) : folder_(std::move(folder)) {}
  /// The file itself where that can be handed over, else a copy.
  Result<FileURL, ImageOperations::Failure> file(const UUID& record, const PromptPreviewTransfer& transfer,
                                                 PictureReading& pictures) const;
  void removeOld() const;
  void remove(const UUID& record) const;
  void removeAll() const;

 private:
  FileURL folderOf(const UUID& record) const;
  FileURL folder_;
};

}  // namespace quillmere
