#pragma once

#include <QtGui/QAction>

#include "model/AppModel.h"

namespace quillmere {

/// The command of a menu that begins a review. The keys beside it are those that are heard everywhere; they are shown
/// only, since the menu would hear them a second time.
class ReviewAction final : public QAction {
 public:
  ReviewAction(AppModel& model, QObject* parent);

 private:
  void showKeys();

  AppModel& model_;
  Connection changes_;
  Connection keyChanges_;
};

/// As Qt has it; empty for what Qt has no name for.
QKeySequence keySequence(const HotKeyShortcut& shortcut, const KeyboardLayout& layout);

}  // namespace quillmere
