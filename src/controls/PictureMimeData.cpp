#include "controls/PictureMimeData.h"

#include "reading/PictureBytes.h"

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
    : contentType_(std::move(contentType)), data_(std::move(data)) {
  if (file) files_.push_back(std::move(*file));
}

QStringList PictureMimeData::formats() const {
  QStringList formats;
  if (!contentType_.isEmpty()) formats << contentType_;
  if (!files_.empty()) formats << kUriList << kGnomeFiles << kKdeCut;
  return formats;
}

QVariant PictureMimeData::retrieveData(const QString& format, QMetaType) const {
  if (!contentType_.isEmpty() && format == contentType_) return bytes();
  if (files_.empty()) return {};
  if (format == kText) {
    QStringList paths;
    for (const FileURL& file : files_) paths << file.displayPath();
    return paths.join(QLatin1Char('\n'));
  }
  QByteArray uriList;
  QByteArray gnomeFiles("copy");
  for (const FileURL& file : files_) {
    const QByteArray coded = QByteArray::fromStdString(file.coded());
    uriList += coded + "\r\n";
    gnomeFiles += "\n" + coded;
  }
  if (format == kUriList) return uriList;
  if (format == kGnomeFiles) return gnomeFiles;
  if (format == kKdeCut) return QByteArray("0");
  return {};
}

QByteArray PictureMimeData::bytes() const {
  if (data_ || files_.empty()) return data_.value_or(QByteArray());
  // Not by a Qt file: a name that is not text has none.
  const auto read = pictureBytes(files_.front());
  return read ? QByteArray(read->data(), static_cast<qsizetype>(read->size())) : QByteArray();
}

}  // namespace quillmere
