#pragma once

#include <functional>

#include "foundation/Signal.h"

namespace quillmere {

/// All that the rest of the program sees of software update. Without an updater nothing can be checked. Main thread.
class SoftwareUpdateModel {
 public:
  bool canCheckForUpdates() const { return canCheck_; }
  bool checksForUpdatesAutomatically() const { return checksAutomatically_; }
  /// An update is being put in place: the program ends for it without a question.
  bool isInstallingUpdate() const { return isInstalling_; }

  void checkForUpdates() const;
  /// The updater decides, and tells what it took.
  void setChecksForUpdatesAutomatically(bool checks) const;

  // For the updater.
  std::function<void()> checkForUpdatesAction;
  std::function<void(bool)> setChecksForUpdatesAutomaticallyAction;
  void setCanCheckForUpdates(bool can) { set(canCheck_, can); }
  void setChecksAutomatically(bool checks) { set(checksAutomatically_, checks); }
  void setInstallingUpdate(bool isInstalling) { set(isInstalling_, isInstalling); }

  Signal<> changed;

 private:
  void set(bool& field, bool value);

  bool canCheck_ = false;
  bool checksAutomatically_ = false;
  bool isInstalling_ = false;
};

}  // namespace quillmere
