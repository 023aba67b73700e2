#include "records/ReplacementJournal.h"

#include <QtCore/QJsonObject>
#include <algorithm>

namespace quillmere {

std::vector<Replacement> ReplacementJournal::load() const {
  std::vector<Replacement> result;
  const QJsonArray entries = file_.load();
  for (const auto& value : entries) {
    const QJsonObject entry = value.toObject();
    const auto id = uuidFromText(entry["id"].toString().toStdString());
    const auto original = JournalFile::fileURL(entry["original"]);
    const auto temporary = JournalFile::fileURL(entry["temporary"]);
    // As text: a number would lose the upper bits of a long one.
    const uint64_t file = entry["file"].toString().toULongLong();
    if (id && original && temporary) result.push_back({*id, *original, *temporary, file});
  }
  return result;
}

bool ReplacementJournal::add(const Replacement& replacement) {
  const std::lock_guard lock(changing_);
  std::vector<Replacement> all = load();
  all.push_back(replacement);
  return save(all);
}

bool ReplacementJournal::remove(const std::vector<Replacement>& replacements) {
  const std::lock_guard lock(changing_);
  std::vector<Replacement> left = load();
  std::erase_if(left, [&](const Replacement& one) {
    return std::find(replacements.begin(), replacements.end(), one) != replacements.end();
  });
  return save(left);
}

bool ReplacementJournal::save(const std::vector<Replacement>& replacements) const {
  QJsonArray entries;
  for (const Replacement& one : replacements) {
    entries.append(QJsonObject{{QStringLiteral("id"), QString::fromStdString(uuidText(one.id))},
                               {QStringLiteral("original"), JournalFile::coded(one.original)},
                               {QStringLiteral("temporary"), JournalFile::coded(one.temporary)},
                               {QStringLiteral("file"), QString::number(one.file)}});
  }
  return file_.save(entries);
}

}  // namespace quillmere
