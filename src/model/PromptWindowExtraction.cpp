#include "model/PromptWindowExtraction.h"

#include "foundation/Localized.h"

namespace quillmere {

std::optional<QRectF> PromptWindowExtraction::shownPart(const Phase& phase) {
  if (const auto* extracted = std::get_if<Extracted>(&phase)) return extracted->crop;
  if (const auto* saving = std::get_if<Saving>(&phase)) return saving->crop;
  return std::nullopt;
}

QString text(PromptPreviewNotice notice) {
  switch (notice) {
    case PromptPreviewNotice::textCopied:
      return localized("Text copied");
    case PromptPreviewNotice::noText:
      return localized("No text found");
    case PromptPreviewNotice::noWindow:
      return localized("No window found");
    case PromptPreviewNotice::alreadyWindow:
      return localized("This is already a window");
  }
  return {};
}

}  // namespace quillmere
