#include "platform/linux/sharing/RecentTargets.h"

#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

const QString kKey = QStringLiteral("quillmere.share-recent");
constexpr QLatin1Char kBetween('\n');

}  // namespace

QStringList RecentTargets::ids() const {
  return defaults_.text(kKey).value_or(QString()).split(kBetween, Qt::SkipEmptyParts).mid(0, kMost);
}

void RecentTargets::store(const QStringList& ids) {
  if (ids == this->ids()) return;
  if (ids.isEmpty()) {
    defaults_.remove(kKey);
  } else {
    defaults_.set(kKey, ids.join(kBetween));
  }
}

void RecentTargets::note(const QString& id) {
  QStringList ids = this->ids();
  ids.removeAll(id);
  ids.prepend(id);
  store(ids.mid(0, kMost));
}

void RecentTargets::forget(const QStringList& gone) {
  QStringList ids = this->ids();
  for (const QString& id : gone) ids.removeAll(id);
  store(ids);
}

void RecentTargets::sort(std::vector<ShareTarget>& targets) const {
  const QStringList recent = ids();
  const auto place = [&recent](const ShareTarget& target) {
    const qsizetype index = recent.indexOf(target.id);
    return std::pair(target.group, index < 0 ? recent.size() : index);
  };
  std::stable_sort(targets.begin(), targets.end(),
                   [&](const ShareTarget& one, const ShareTarget& other) { return place(one) < place(other); });
}

}  // namespace quillmere
