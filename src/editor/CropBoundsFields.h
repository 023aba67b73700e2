#pragma once

#include <QtWidgets/QWidget>
#include <array>
#include <functional>
#include <optional>

#include "editor/CropSelection.h"
#include "editor/PixelField.h"

namespace quillmere {

class ActionButton;

/// The selection's bounds as four numbers, in pixels from the picture's top left corner, and the button that takes all
/// of it.
///
/// What is typed is taken as soon as the four together lie inside the picture, by Return, on leaving a field and by the
/// arrow keys. Until then it stays as it is typed, with a problem told, and the selection stays too.
class CropBoundsFields final : public QWidget {
 public:
  explicit CropBoundsFields(QWidget* parent);

  /// A selection that has become another one elsewhere takes the place of what was typed.
  void show(const CropSelection& selection);
  /// Takes what is typed; answers whether it could be.
  bool takeTyped();
  /// What is wrong with what is typed; empty where nothing is.
  const QString& problem() const { return problem_; }
  /// Valid bounds, other than those that were shown.
  std::function<void(const QRect& bounds)> onEdit;
  /// Whether an arrow key is held in one of them. What is edited meanwhile belongs together.
  bool isHeld() const { return isHeld_; }
  std::function<void()> onHeldChanged;
  std::function<void()> onProblemChanged;
  std::function<void()> onSelectWholeImage;

 private:
  using Numbers = std::array<std::optional<qint64>, 4>;  ///< X, Y, width and height
  QWidget* makeField(size_t index, const QString& name);
  Numbers numbers() const;
  bool areBounds(const Numbers& numbers) const;
  void showNumbers();
  void commit(PixelField::Commit how);
  void step(size_t index, int by);
  void setProblem(const QString& problem);

  std::array<PixelField*, 4> fields_{};
  ActionButton* whole_;
  CropSelection shown_;
  QString problem_;
  bool isHeld_ = false;
};

}  // namespace quillmere
