#pragma once

#include <QtCore/QMimeData>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere {

/// A picture as other applications take it: its own bytes under its content type, never encoded anew, and its file in
/// the forms of file managers. It is offered as no other type: a large picture would take seconds to make one, on the
/// thread that everything waits for.
class PictureMimeData final : public QMimeData {
 public:
  /// Bytes that are not given are read from the file when they are asked for.
  PictureMimeData(std::optional<FileURL> file, QString contentType, std::optional<QByteArray> data);
  /// Several files, which are no one picture.
  explicit PictureMimeData(std::vector<FileURL> files) : files_(std::move(files)) {}

  bool hasFormat(const QString& format) const override { return formats().contains(format); }
  QStringList formats() const override;

 protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override;

 private:
  QByteArray bytes() const;
  std::vector<FileURL> files_;
  QString contentType_;  ///< of the one picture; empty for several
  std::optional<QByteArray> data_;
};

}  // namespace quillmere
