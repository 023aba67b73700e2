#include "records/MoveJournal.h"

#include <QtCore/QJsonObject>

namespace quillmere {

std::vector<BegunMove> MoveJournal::load() const {
  std::vector<BegunMove> result;
  const QJsonArray entries = file_.load();
  for (const auto& value : entries) {
    const QJsonObject entry = value.toObject();
    const auto id = uuidFromText(entry["id"].toString().toStdString());
    const auto from = JournalFile::fileURL(entry["from"]);
    const auto to = JournalFile::fileURL(entry["to"]);
    if (id && from && to) result.push_back({*id, *from, *to});
  }
  return result;
}

bool MoveJournal::save(const std::vector<BegunMove>& moves) const {
  QJsonArray entries;
  for (const BegunMove& one : moves) {
    entries.append(QJsonObject{{QStringLiteral("id"), QString::fromStdString(uuidText(one.id))},
                               {QStringLiteral("from"), JournalFile::coded(one.from)},
                               {QStringLiteral("to"), JournalFile::coded(one.to)}});
  }
  return file_.save(entries);
}

}  // namespace quillmere
