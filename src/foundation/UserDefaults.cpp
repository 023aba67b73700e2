#include "foundation/UserDefaults.h"

#include <QtCore/QJsonDocument>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"

namespace quillmere {
namespace {

constexpr std::filesystem::perms ownerAlone() {
  return std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
}

/// None for what is no object: unreadable values give defaults, never an error.
std::optional<QJsonObject> readObject(const FileURL& file) {
  const auto bytes = readFile(file);
  const auto document = bytes ? QJsonDocument::fromJson(QByteArray::fromStdString(*bytes)) : QJsonDocument();
  return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

bool writeObject(const FileURL& file, const QJsonObject& object) {
  return replaceFile(file, QJsonDocument(object).toJson(QJsonDocument::Indented).toStdString());
}

/// As they are written: one setting a line.
QJsonObject settingsIn(const QByteArray& damaged) {
  QJsonObject kept;
  for (QByteArray line : damaged.split('\n')) {
    line = line.trimmed();
    if (line.endsWith(',')) line.chop(1);
    const QJsonObject one = QJsonDocument::fromJson("{" + line + "}").object();
    for (auto setting = one.begin(); setting != one.end(); ++setting) kept[setting.key()] = setting.value();
  }
  return kept;
}

/// One damaged byte must not cost all settings, the chosen folder among them.
void repair(const FileURL& asked) {
  const FileURL file = asked.resolvingSymlinks().value_or(asked);
  const auto status = fileStatus(file);
  // Reading a named pipe would wait for ever.
  if (status && status->kind == FileStatus::Kind::other) {
    ::rename(file.c_str(), file.parent().appending(file.stem() + ".no-file").c_str());
    return;
  }
  const auto bytes = readFile(file);
  if (!bytes || bytes->empty()) return;
  const QByteArray text = QByteArray::fromStdString(*bytes);
  if (QJsonDocument::fromJson(text).isObject()) return;
  if (!copyAside(file, file.parent(), file.stem() + ".damaged")) return;
  writeObject(file, settingsIn(text));
}

constexpr int kMostDoublings = 5;

}  // namespace

/// The file, and what is to be changed in it. Any thread.
class UserDefaults::File {
 public:
  explicit File(const QString& path) : url_(FileURL::fromPath(path)) {}

  QJsonObject open() const {
    removeUnfinished(url_);
    repair(url_);
    // One that an earlier version or a person made may be open to others.
    std::error_code ignored;
    std::filesystem::permissions(url_.path(), ownerAlone(), ignored);
    return readObject(url_).value_or(QJsonObject());
  }

  /// An undefined value removes its key. `all` is what stands in the file then where it cannot be read.
  void change(const QString& key, const QJsonValue& value, const QJsonObject& all) {
    const std::lock_guard lock(mutex_);
    unwritten_[key] = value;
    all_ = all;
  }
  bool isWritten() const {
    const std::lock_guard lock(mutex_);
    return unwritten_.empty();
  }
  /// As it was written or read last, with what is still to be written.
  QJsonObject values() const {
    const std::lock_guard lock(mutex_);
    return all_;
  }

  /// All changes of this moment; one write at a time.
  bool write() {
    const std::lock_guard order(writing_);
    std::unique_lock lock(mutex_);
    const Changes changes = unwritten_;
    if (changes.empty()) return true;
    QJsonObject known = all_;
    lock.unlock();
    const auto present = readObject(url_);
    const QJsonObject wanted = with(changes, present.value_or(std::move(known)));
    // What stands there already needs no disk to be waited for.
    const bool isWritten = present == wanted || writeObject(url_, wanted);
    lock.lock();
    if (isWritten) std::erase_if(unwritten_, [&](const auto& change) { return isSame(changes, change); });
    all_ = with(unwritten_, wanted);
    return isWritten;
  }

 private:
  using Changes = std::map<QString, QJsonValue>;
  static QJsonObject with(const Changes& changes, QJsonObject values) {
    for (const auto& [key, value] : changes) values[key] = value;
    return values;
  }
  static bool isSame(const Changes& written, const Changes::value_type& change) {
    const auto one = written.find(change.first);
    return one != written.end() && one->second == change.second;
  }

  const FileURL url_;
  std::mutex writing_;
  mutable std::mutex mutex_;
  Changes unwritten_;
  QJsonObject all_;
};

UserDefaults::UserDefaults(const QString& filePath) : file_(std::make_shared<File>(filePath)), values_(file_->open()) {}

UserDefaults::~UserDefaults() {
  if (retry_) executor_->cancelDelay(*retry_);
  if (disk_) file_->write();
}

std::optional<bool> UserDefaults::boolean(const QString& key) const {
  const QJsonValue value = values_.value(key);
  return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<int> UserDefaults::integer(const QString& key) const {
  const QJsonValue value = values_.value(key);
  if (!value.isDouble()) return std::nullopt;
  const double number = value.toDouble();
  using Limits = std::numeric_limits<int>;
  if (number != std::trunc(number) || number < Limits::min() || number > Limits::max()) return std::nullopt;
  return static_cast<int>(number);
}

std::optional<QString> UserDefaults::text(const QString& key) const {
  const QJsonValue value = values_.value(key);
  return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> UserDefaults::data(const QString& key) const {
  const auto coded = text(key);
  if (!coded) return std::nullopt;
  const auto decoded = QByteArray::fromBase64Encoding(coded->toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return std::nullopt;
  return *decoded;
}

void UserDefaults::set(const QString& key, bool value) {
  change(key, value);
}
void UserDefaults::set(const QString& key, int value) {
  change(key, value);
}
void UserDefaults::set(const QString& key, const QString& value) {
  change(key, value);
}
void UserDefaults::set(const QString& key, const QByteArray& value) {
  change(key, QString::fromLatin1(value.toBase64()));
}
void UserDefaults::remove(const QString& key) {
  change(key, QJsonValue::Undefined);
}

void UserDefaults::change(const QString& key, const QJsonValue& value) {
  values_[key] = value;
  file_->change(key, value, values_);
  if (disk_) {
    writeSoon();
  } else {
    write();
  }
}

bool UserDefaults::write() {
  const bool isWritten = file_->write();
  values_ = file_->values();
  return isWritten;
}

// --- In the background ---

void UserDefaults::writeInBackground(Executor& executor, Executor& disk) {
  executor_ = &executor;
  disk_ = &disk;
}

/// What is set while one is being written is written after it.
void UserDefaults::writeSoon() {
  if (retry_) executor_->cancelDelay(*std::exchange(retry_, std::nullopt));
  if (std::exchange(isWriting_, true)) return;
  const auto isWritten = std::make_shared<bool>(false);
  disk_->runInBackground([file = file_, isWritten] { *isWritten = file->write(); },
                         [self = lifetime_.weak(this), isWritten] {
                           if (self) self->writeEnded(*isWritten);
                         });
}

void UserDefaults::writeEnded(bool isWritten) {
  isWriting_ = false;
  values_ = file_->values();
  if (isWritten) {
    failures_ = 0;
    if (!file_->isWritten()) writeSoon();
    return;
  }
  const Duration pause = std::chrono::seconds(1 << std::min(failures_++, kMostDoublings));
  retry_ = executor_->startDelay(pause, [this](bool isOver) {
    retry_.reset();
    if (isOver) writeSoon();
  });
}

}  // namespace quillmere
