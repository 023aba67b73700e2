#pragma once

#include <QtWidgets/QWidget>

#include "controls/Theme.h"

namespace quillmere {

/// One of the program's own symbols beside a text, in one of the theme's colours, whichever the desktop has now. It is
/// an ornament: what it says, the text says too.
class SymbolLabel final : public QWidget {
 public:
  SymbolLabel(int points, Ink ink, QWidget* parent, const QString& symbol = {});
  void setSymbol(const QString& symbol, Ink ink);
  void setSymbol(const QString& symbol) { setSymbol(symbol, ink_); }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int points_;
  Ink ink_;
  QString symbol_;
};

}  // namespace quillmere
