#include "inbox/CaptureKindLabel.h"

namespace quillmere {
namespace {

QString symbolOf(CaptureKind kind) {
  switch (kind) {
    case CaptureKind::display:
      return QStringLiteral("display");
    case CaptureKind::window:
      return QStringLiteral("macwindow");
    case CaptureKind::selection:
      return QStringLiteral("rectangle.dashed");
  }
  return {};
}

}  // namespace

void CaptureKindLabel::show(CaptureKind kind) {
  SymbolRow::show(symbolOf(kind), label(kind));
}

}  // namespace quillmere
