#include "controls/PictureMimeData.h"

#include "formats/ImageFile.h"

namespace quillmere {
namespace {

const QString kUriList = QStringLiteral("text/uri-list");
/// "copy", a line feed and the file; without it some file managers paste nothing.
const QString kGnomeFiles = QStringLiteral("x-special/gnome-copied-files");
/// "0" for a copy, "1" for a cut.
const QString kKdeCut = QStringLiteral("application/x-kde-cutselection");
/// Qt offers it wherever there are files, and would give a URL made for reading, which neither a shell nor a file
/// dialog understands.
const QString kText = QStringLiteral("text/plain");

}  // namespace

PictureMimeData::PictureMimeData(std::optional<FileURL> file, QString contentType, std::optional<QByteArray> data)
    : file_(std::move(file)), contentType_(std::move(contentType)), data_(std::move(data)) {}

QStringList PictureMimeData::formats() const {
  QStringList formats{contentType_};
  if (file_) formats << kUriList << kGnomeFiles << kKdeCut;
  return formats;
}

QVariant PictureMimeData::retrieveData(const QString& format, QMetaType) const {
  if (format == contentType_) return bytes();
  if (!file_) return {};
  if (format == kText) return file_->displayPath();
  const QByteArray coded = QByteArray::fromStdString(file_->coded());
  if (format == kUriList) return coded + "\r\n";
  if (format == kGnomeFiles) return QByteArray("copy\n" + coded);
  if (format == kKdeCut) return QByteArray("0");
  return {};
}

QByteArray PictureMimeData::bytes() const {
  if (data_ || !file_) return data_.value_or(QByteArray());
  // Not by a Qt file: a name that is not text has none.
  const auto read = ImageFile::bytesOf(*file_);
  return read ? QByteArray(read->data(), static_cast<qsizetype>(read->size())) : QByteArray();
}

}  // namespace quillmere
