#pragma once

#include <QtWidgets/QPushButton>

#include "controls/ButtonLook.h"
#include "controls/WorkRing.h"

namespace quillmere {

/// A button of the program's own look: a symbol and a text on a rounded ground.
class ActionButton final : public QPushButton {
 public:
  using Role = ButtonRole;
  ActionButton(Role role, const QString& symbol, const QString& text, QWidget* parent = nullptr);

  void setSymbol(const QString& symbol);
  /// Shown with a check mark in the place of its text, as long as there is one; its size and its name stay.
  void setNote(const QString& note);
  const QString& note() const { return note_; }
  /// Something is under way that it began.
  void setWorking(bool isWorking) { ring_.setWorking(isWorking); }
  bool isWorking() const { return ring_.isWorking(); }
  /// Looks as if it could not be used, and keeps the keyboard: for a moment in which nothing is to be done.
  void setDimmed(bool isDimmed);
  bool isDimmed() const { return isDimmed_; }
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Role role_;
  QString symbol_;
  QString note_;
  bool isDimmed_ = false;
  WorkRing ring_{*this};
};

}  // namespace quillmere
