#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <map>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// The settings of one person: one flat JSON object whose values keep their type. A key that is absent and a value of
/// another type both read as none. A write is on the disk when it returns, and answers whether it is.
///
/// A damaged file is copied beside itself as "<stem>.damaged.json" (or "-2" to "-100") when it is opened, and every
/// line of it that still is a setting is kept.
class UserDefaults {
 public:
  explicit UserDefaults(const QString& filePath);

  std::optional<bool> boolean(const QString& key) const;
  std::optional<int> integer(const QString& key) const;
  std::optional<QString> text(const QString& key) const;
  /// Data stands in the file as Base64 text.
  std::optional<QByteArray> data(const QString& key) const;

  bool set(const QString& key, bool value);
  bool set(const QString& key, int value);
  bool set(const QString& key, const QString& value);
  bool set(const QString& key, const char* value) = delete;
  bool set(const QString& key, const QByteArray& value);
  void remove(const QString& key);

 private:
  bool write(const QString& key, const QJsonValue& value);

  FileURL file_;
  QJsonObject values_;
  std::map<QString, QJsonValue> unwritten_;  ///< of writes that failed; undefined where a key was removed
};

}  // namespace quillmere
