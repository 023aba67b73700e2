#pragma once

#include <functional>
#include <optional>
#include <set>

#include "controls/PictureCanvas.h"
#include "editor/CropHandles.h"
#include "editor/CropHistory.h"
#include "editor/CropScene.h"

namespace quillmere {

/// The picture of the crop editor, on which its selection is drawn, moved and changed by pointer and keys. It changes
/// the history that it was given, and tells.
///
/// The left button draws, moves and resizes; with Space held, and with the middle button, the hand moves the picture.
/// Two clicks pick a detected window. Keys that it has no use for go on to its parent.
class CropCanvas : public PictureCanvas {
 public:
  /// `history` outlives it.
  CropCanvas(Executor& executor, CropHistory& history, QWidget* parent);
  ~CropCanvas() override;

  /// The selection has become another one in the canvas: by pointer, keys or a screen reader's action.
  std::function<void()> onChanged;
  /// Shows what the history has become elsewhere: by a field, a menu, undo.
  void followHistory();
  /// Ends the step that a drag, a held key or a click has open, before something else changes the history. What it has
  /// led to stays.
  void endStep();
  /// While an action is under way nothing can be changed.
  void setLocked(bool isLocked);
  bool isLocked() const { return isLocked_; }

  const CropSelection& selection() const { return history_.current(); }
  /// As one step, and tells. Nothing while it is locked.
  void moveSelection(int dx, int dy);
  /// In words, for screen readers: the crop's place and size in pixels.
  static QString valueInWords(const CropSelection& selection);

 protected:
  bool event(QEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

  void paintMarks(QPainter& painter, const QRect& place, const QRect& visible) override;
  void paintOver(QPainter& painter, const QRect& place, const QRect& visible) override;
  void placeChanged() override;
  void updateCursor() override;

 private:
  struct Held {
    CropDrag drag;
    QPointF press;  ///< in points of the view
    bool hasTravelled = false;
  };

  /// Whether the history is of the picture that is shown.
  bool isReady() const;
  void change(const std::function<void(CropSelection&)>& something);
  void tellChange();

  // By pointer.
  std::optional<CropHandle> handleAt(QPointF point) const;
  const WindowCandidate* windowAt(QPointF point) const;
  void beginDrag(QPointF point);
  void continueDrag();
  void awaitSecondClick();
  void cancelDrag();
  /// While the pointer is at the edge of a view that shows a part, or beyond.
  void scrollAlong();
  void stopScrolling();
  /// How far the picture should go in a moment.
  QPointF scrolling() const;
  void followPointer(QPointF point, Qt::KeyboardModifiers modifiers);

  // By keys.
  bool isOwn(const QKeyEvent& event) const;
  void takeArrow(const QKeyEvent& event);

  // How it looks.
  CropScene scene() const;
  std::optional<CropLoupe> loupe(const CropScene& scene) const;
  void showScene();

  CropHistory& history_;
  bool isLocked_ = false;
  std::optional<Held> held_;
  /// The click that was the last, which a second one takes back.
  std::optional<Executor::DelayID> click_;
  std::optional<Executor::DelayID> scrolling_;
  std::set<int> arrows_;  ///< that are held
  bool isSpaceHeld_ = false;
  bool showsRing_ = false;
  std::optional<QPointF> pointer_;  ///< while it is over the canvas or drags
  Qt::KeyboardModifiers modifiers_;
  CropScene shown_;
  QRect told_;  ///< to screen readers
};

}  // namespace quillmere
