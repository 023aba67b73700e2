#pragma once

#include <QtCore/QStringList>
#include <vector>

#include "foundation/UserDefaults.h"
#include "model/Sharing.h"

namespace quillmere {

/// The programs that pictures were sent to last, remembered by their desktop ids.
class RecentTargets {
 public:
  static constexpr int kMost = 8;
  explicit RecentTargets(UserDefaults& defaults) : defaults_(defaults) {}

  /// The last one first.
  QStringList ids() const;
  void note(const QString& id);
  void forget(const QStringList& ids);
  /// Group by group, and in each the one that was used last first; the others keep their order.
  void sort(std::vector<ShareTarget>& targets) const;

 private:
  void store(const QStringList& ids);
  UserDefaults& defaults_;
};

}  // namespace quillmere
