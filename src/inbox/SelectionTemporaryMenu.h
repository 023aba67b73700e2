#pragma once

#include <QtWidgets/QMenu>
#include <functional>

#include "records/TemporaryDuration.h"

namespace quillmere {

/// The times for which screenshots can be kept, below the button that it is the menu of.
class SelectionTemporaryMenu final : public QMenu {
 public:
  explicit SelectionTemporaryMenu(QWidget* parent);
  std::function<void(TemporaryDuration)> action;
};

}  // namespace quillmere
