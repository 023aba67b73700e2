#pragma once

#include <QtWidgets/QWidget>

#include "model/AppModel.h"

namespace quillmere {

class ActionButton;

/// Sets the review shortcut to the standard one.
class RestoreDefaultShortcutButton final : public QWidget {
 public:
  RestoreDefaultShortcutButton(AppModel& model, QWidget* parent);
  void refresh();

  /// What comes before it.
  std::function<void()> willRestore;

 private:
  AppModel& model_;
  ActionButton* button_;
};

}  // namespace quillmere
