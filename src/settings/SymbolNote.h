#pragma once

#include <QtWidgets/QWidget>

#include "controls/Theme.h"

class QLabel;

namespace quillmere {

class SymbolLabel;

/// A symbol with a text beside it; nothing at all without a text.
class SymbolNote final : public QWidget {
 public:
  explicit SymbolNote(QWidget* parent);
  /// Without a symbol the text stands alone.
  void show(const QString& symbol, Ink ink, const QString& text);
  void clear() { show({}, Ink::secondary, {}); }
  QString text() const;

 private:
  SymbolLabel* symbol_;
  QLabel* text_;
};

}  // namespace quillmere
