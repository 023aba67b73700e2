#pragma once

#include <vector>

#include "controls/CardDialog.h"
#include "shell/AboutInformation.h"

class QGridLayout;
class QScrollArea;

namespace quillmere {

/// What the program is built from, each with its licence. It goes with Escape, and when something else is clicked.
class AcknowledgmentsPopover final : public CardDialog {
 public:
  AcknowledgmentsPopover(const std::vector<LinkedLibrary>& libraries, QWidget* parent);

  /// Above the control or below it, wherever there is more room; as high as its list or as that room.
  void openBeside(const QWidget& control);

 protected:
  bool event(QEvent* event) override;

 private:
  QWidget* makeList(const std::vector<LinkedLibrary>& libraries);

  QScrollArea* list_ = nullptr;
};

}  // namespace quillmere
