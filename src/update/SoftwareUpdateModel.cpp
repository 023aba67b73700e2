#include "update/SoftwareUpdateModel.h"

#include <utility>

namespace quillmere {

void SoftwareUpdateModel::checkForUpdates() const {
  if (canCheck_ && checkForUpdatesAction) checkForUpdatesAction();
}

void SoftwareUpdateModel::setChecksForUpdatesAutomatically(bool checks) const {
  if (setChecksForUpdatesAutomaticallyAction) setChecksForUpdatesAutomaticallyAction(checks);
}

void SoftwareUpdateModel::set(bool& field, bool value) {
  if (std::exchange(field, value) != value) changed();
}

}  // namespace quillmere
