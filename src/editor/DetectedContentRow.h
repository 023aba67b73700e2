#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "editor/CropSelection.h"

class QCheckBox;
class QComboBox;

namespace quillmere {

/// The windows that were found, to choose one, and whether its shadow comes with it. Nothing is shown where none was
/// found.
class DetectedContentRow final : public QWidget {
 public:
  explicit DetectedContentRow(QWidget* parent);

  void show(const CropSelection& selection);
  std::function<void(const UUID& candidate)> onPick;
  std::function<void(bool includes)> onIncludeShadow;

 private:
  void showMenu(const CropSelection& selection);
  void showShadow(const CropSelection& selection);

  QComboBox* menu_;
  QCheckBox* shadow_;
  std::vector<UUID> offered_;
};

}  // namespace quillmere
