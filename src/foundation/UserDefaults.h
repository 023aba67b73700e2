#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <memory>
#include <optional>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"
#include "foundation/Weak.h"

namespace quillmere {

/// The settings of one person: one flat JSON object whose values keep their type. A key that is absent and a value of
/// another type both read as none. What another program changes in the file is kept. Main thread.
///
/// A damaged file is copied beside itself as "<stem>.damaged.json" (or "-2" to "-100") when it is opened, and every
/// line of it that still is a setting is kept.
class UserDefaults {
 public:
  explicit UserDefaults(const QString& filePath);
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;
  /// Writes what is not on the disk yet.
  ~UserDefaults();

  std::optional<bool> boolean(const QString& key) const;
  std::optional<int> integer(const QString& key) const;
  std::optional<QString> text(const QString& key) const;
  /// Data stands in the file as Base64 text.
  std::optional<QByteArray> data(const QString& key) const;

  /// Read as set at once, and on the disk when it returns, unless that is done in the background.
  void set(const QString& key, bool value);
  void set(const QString& key, int value);
  void set(const QString& key, const QString& value);
  void set(const QString& key, const char* value) = delete;
  void set(const QString& key, const QByteArray& value);
  void remove(const QString& key);
  /// Whether all that was set is on the disk, which is waited for. What is not is tried again with each write.
  bool write();

  /// From now on `disk` waits for the disk; what fails is tried again after 1, 2, 4 … 32 seconds of `executor`. Both
  /// outlive the last work that is given to them.
  void writeInBackground(Executor& executor, Executor& disk);

 private:
  class File;
  void change(const QString& key, const QJsonValue& value);
  void writeSoon();
  void writeEnded(bool isWritten);

  std::shared_ptr<File> file_;
  QJsonObject values_;
  Executor* executor_ = nullptr;
  Executor* disk_ = nullptr;
  bool isWriting_ = false;
  int failures_ = 0;  ///< since one succeeded
  std::optional<Executor::DelayID> retry_;
  Lifetime lifetime_;
};

}  // namespace quillmere
