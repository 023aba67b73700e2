#pragma once

#include <QtWidgets/QWidget>

#include "controls/Theme.h"

namespace quillmere {

class SymbolLabel;
class ThemedLabel;

/// A text with a symbol before its first line.
class SymbolRow : public QWidget {
 public:
  /// A fact likes to stand in one line and takes no more room than that; a sentence takes what there is.
  enum class Wrapping { none, words };
  SymbolRow(Ink ink, Wrapping wrapping, QWidget* parent);
  /// Without a symbol the text begins in the symbol's place.
  void show(const QString& symbol, const QString& text);
  void setTextSize(qreal factor);
  QString text() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void placeSymbol();
  Wrapping wrapping_;
  SymbolLabel* symbol_;
  ThemedLabel* text_;
};

}  // namespace quillmere
