#pragma once

#include <QtCore/QMargins>
#include <QtWidgets/QDialog>

#include "controls/PopupSurface.h"

namespace quillmere {

/// A dialog on a card of its own, with its heading inside: its title is for lists of windows and for screen readers, so
/// that nobody reads it twice.
class CardDialog : public QDialog {
 public:
  CardDialog(const QString& title, QWidget* parent);

 protected:
  static constexpr int kPadding = 20;
  /// Around what stands on the card.
  static constexpr QMargins kMargins{PopupSurface::kReach + kPadding, PopupSurface::kReach + kPadding,
                                     PopupSurface::kReach + kPadding, PopupSurface::kReach + kPadding};

  void mousePressEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace quillmere
