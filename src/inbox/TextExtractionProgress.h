#pragma once

#include <QtWidgets/QWidget>

#include "inbox/InboxPresentation.h"

namespace quillmere {

class SymbolRow;

/// How many of several screenshots are still to be read.
class TextExtractionProgress final : public QWidget {
 public:
  explicit TextExtractionProgress(QWidget* parent);
  /// Without a batch, and after its last one, there is nothing to see.
  void show(const std::optional<InboxPresentation::TextExtractionBatch>& batch);

 private:
  SymbolRow* text_;
};

}  // namespace quillmere
