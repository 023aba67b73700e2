#pragma once

#include "inbox/SymbolRow.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// What a screenshot was taken of.
class CaptureKindLabel final : public SymbolRow {
 public:
  explicit CaptureKindLabel(QWidget* parent) : SymbolRow(Ink::secondary, Wrapping::none, parent) {}
  void show(CaptureKind kind);
};

}  // namespace quillmere
