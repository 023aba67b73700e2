#pragma once

#include <fcntl.h>
#include <unistd.h>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "crashes/CrashedProgram.h"
#include "foundation/FileCopy.h"

namespace quillmere::testing {

/// What is about to be done and what the program says has been done and saved, a JSON object a line, written outside of
/// the disks that are tested. What a process has written there stays when it is killed.
class Promises {
 public:
  explicit Promises(const char* file) : file_(::open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)) {
    if (file_ < 0) std::abort();
  }

  void write(const QJsonObject& line) {
    const QByteArray text = QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    if (!writeAll(file_, text.constData(), static_cast<size_t>(text.size()))) std::abort();
  }

  /// Of these records; until `end` both what was and what comes of it may be found.
  void begin(const char* operation, const std::vector<UUID>& ids, QJsonObject more = {}) {
    QJsonArray of;
    for (const UUID& id : ids) of.append(text(id));
    more["try"] = operation;
    more["ids"] = of;
    write(more);
  }
  /// A crop has taken the place of this record's file.
  void noteReplaced(const UUID& id) { replaced_.push_back(id); }
  /// Tells the records that have changed, if they are saved. The first time all there are.
  void end(const CrashedProgram& program) {
    if (!program.isSaved()) return;
    for (const UUID& id : std::exchange(replaced_, {})) write({{"replaced", text(id)}});
    std::map<std::string, QJsonObject> now;
    program.model->items().forEach([&](const ScreenshotItem& item) {
      QJsonObject line{{"is", text(item.id)}, {"path", path(item.url)}, {"state", nameOf(item.state)}};
      if (item.expiresAt) line["until"] = item.expiresAt->seconds + static_cast<double>(Date::kReferenceUnixSeconds);
      now[uuidText(item.id)] = line;
    });
    for (const auto& [id, line] : now) {
      if (told_[id] != line) write(line);
    }
    for (const auto& [id, line] : told_) {
      if (!now.contains(id)) write({{"gone", QString::fromStdString(id)}});
    }
    if (std::exchange(isFirst_, false)) {
      QJsonArray all;
      for (const auto& [id, line] : now) all.append(QString::fromStdString(id));
      write({{"records", all}});
    }
    told_ = std::move(now);
    write({{"end", true}});
  }

  static QString text(const UUID& id) { return QString::fromStdString(uuidText(id)); }
  static QString path(const FileURL& url) { return QString::fromStdString(url.path()); }

 private:
  static QString nameOf(ScreenshotItem::State state) {
    switch (state) {
      case ScreenshotItem::State::pending:
        return QStringLiteral("pending");
      case ScreenshotItem::State::temporary:
        return QStringLiteral("temporary");
      case ScreenshotItem::State::permanent:
        return QStringLiteral("permanent");
    }
    return {};
  }

  int file_;
  bool isFirst_ = true;
  std::vector<UUID> replaced_;
  std::map<std::string, QJsonObject> told_;
};

}  // namespace quillmere::testing
