#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "popup/CardMotion.h"
#include "popup/CardShadow.h"

class QScrollArea;
class QScrollBar;

namespace quillmere {

class ActionButton;
class CountdownLine;

/// The popup's window: the card, its shadow around it, and nothing else. It never takes the keyboard by itself.
class CaptureDecisionPanel final : public QWidget {
 public:
  /// `contents` stand on the card, and scroll where there is too little room; below them `footer`, which does not.
  explicit CaptureDecisionPanel(QWidget* contents, QWidget* footer = nullptr);

  void setScrolls(bool scrolls);
  /// Without a compositor there is no shadow, and a stronger edge tells the card from what lies below.
  void setCompositing(bool isCompositing);
  /// In the window's points.
  QRect cardRect() const;
  void setFrame(const QRect& frame);
  /// Instead of the card a note of so many screenshots, from which it opens; 0 for the card.
  void setNote(int count);
  /// How high the card is as a note, in points.
  static constexpr int kNoteHeight = 52;
  std::function<void()> onNoteClicked;
  /// What is left of the time to answer, from 0 to 1; none where it does not run down.
  void showRemaining(std::optional<double> remaining);
  /// The window is hidden at once, and a picture of it fades away.
  void leave();
  /// The same without a trace: also a compositor that fades windows itself has nothing to fade.
  void vanish();

  int frameChangeCount() const { return frameChangeCount_; }
  /// How many times the shadow was drawn anew.
  int shadowInvalidationCount() const { return shadow_.count(); }

  std::function<void()> onDeactivated;
  /// The window manager was asked to close the window, which stays until the model hides it.
  std::function<void()> onCloseRequested;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void makeScrollBar();
  void layOut();
  bool moves() const;

  QScrollArea* scroll_;
  QWidget* footer_;
  QScrollBar* scrollBar_ = nullptr;
  ActionButton* note_;
  CountdownLine* countdown_;
  CardShadow shadow_;
  CardMotion motion_;
  bool scrolls_ = false;
  bool isCompositing_ = true;
  int frameChangeCount_ = 0;
};

}  // namespace quillmere
