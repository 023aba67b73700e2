#pragma once

#include <QtCore/QJsonArray>

#include "foundation/FileURL.h"

namespace quillmere {

/// A small file of what has begun and is not over, for the run after one that ends without notice. After a power cut
/// the old or the new entries stand there. Without entries there is no file.
class JournalFile {
 public:
  explicit JournalFile(FileURL file) : file_(std::move(file)) {}
  const FileURL& file() const { return file_; }

  /// None where there is no file or it cannot be read.
  QJsonArray load() const;
  /// Flushed before it returns. Answers whether it is certain to be there after a power cut.
  bool save(const QJsonArray& entries) const;

  /// File URLs in entries, of which any name survives.
  static QString coded(const FileURL& url);
  static std::optional<FileURL> fileURL(const QJsonValue& value);

 private:
  FileURL file_;
};

}  // namespace quillmere
