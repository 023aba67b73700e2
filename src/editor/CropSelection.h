#pragma once

#include <QtCore/QPointF>
#include <QtCore/QSize>
#include <optional>
#include <vector>

#include "editor/WindowCandidate.h"

namespace quillmere {

/// The part of a picture that a person chooses: drawn, picked among the windows that were found, moved by keys or
/// typed.
///
/// All is in pixels of the upright picture, from its top left corner. The selection is inside the picture and either
/// empty or of at least one pixel. It stands for a window as long as only its shadow was taken in or left out; the
/// shadow is part of it only then.
class CropSelection {
 public:
  CropSelection() = default;
  /// The candidates lie inside the picture.
  explicit CropSelection(QSize image, std::vector<WindowCandidate> candidates = {});

  QSize imageSize() const { return image_; }
  QRect bounds() const { return {QPoint(0, 0), image_}; }
  const QRect& selection() const { return selection_; }
  bool isEmpty() const { return selection_.isEmpty(); }
  bool isWholeImage() const { return !isEmpty() && selection_ == bounds(); }

  const std::vector<WindowCandidate>& candidates() const { return candidates_; }
  std::optional<UUID> selectedCandidate() const { return selectedCandidate_; }
  /// What the selection stands for; null for none.
  const WindowCandidate* candidate() const;

  /// Whether windows are taken with their shadow, where they have one.
  bool includesShadow() const { return includesShadow_; }
  /// Whether the selection stands for a window that has a shadow.
  bool canIncludeShadow() const;
  /// What the shadow really added on each side, after clipping to the picture; none while none is in the selection.
  const std::optional<WindowShadowMargin>& appliedShadow() const { return appliedShadow_; }

  /// Takes a window, with its shadow if shadows are included. Ids of others do nothing.
  void pick(const UUID& id);
  /// Nothing happens without a window that has a shadow.
  void setIncludesShadow(bool includes);
  /// The whole pixels that the rectangle between two points touches, each first brought into the picture. Nothing where
  /// both are the same.
  void drag(QPointF start, QPointF current);
  /// By hand, as a drag would have it: the part inside the picture. A negative size goes the other way from the corner.
  void setByHand(const QRect& rect);
  /// As far as the picture has room. Nothing while nothing is selected.
  void moveBy(int dx, int dy);
  /// The top left corner stays, and a side has at least one pixel and at most the room to the picture's edge. Nothing
  /// while nothing is selected.
  void resizeBy(int dx, int dy);
  /// Takes these bounds if they have a size and lie inside the picture; answers whether they do.
  bool setBounds(qint64 x, qint64 y, qint64 width, qint64 height);
  /// A window that was selected and its shadow stay so: the box takes the shadow off the whole.
  void selectWholeImage();

  bool operator==(const CropSelection&) const = default;

 private:
  void select(const QRect& rect);
  void becomeOwn();
  void addShadow();
  void removeShadow();

  QSize image_{0, 0};
  QRect selection_;
  std::vector<WindowCandidate> candidates_;
  std::optional<UUID> selectedCandidate_;
  bool includesShadow_ = false;
  std::optional<WindowShadowMargin> appliedShadow_;
};

}  // namespace quillmere
