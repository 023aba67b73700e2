#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <memory>
#include <optional>

class QSettings;
class QJsonValue;

namespace quillmere {

/// The settings of one person: one flat JSON object whose values keep their type. A key that is absent and a value of
/// another type both read as none. A write is on the disk when it returns, and answers whether it is.
///
/// A damaged file is copied beside itself as "<stem>.damaged.json" (or "-2" to "-100") when it is opened, and every
/// line of it that still is a setting is kept.
class UserDefaults {
 public:
  explicit UserDefaults(const QString& filePath);
  ~UserDefaults();

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
  bool write(const QString& key, const QVariant& value);
  std::unique_ptr<QSettings> settings_;
};

}  // namespace quillmere
