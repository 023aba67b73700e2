#pragma once

#include <QtCore/QRectF>
#include <QtCore/QString>
#include <optional>
#include <variant>

#include "records/UUID.h"

namespace quillmere {

/// How far Extract Window has come with the screenshot in the popup. All rectangles are pixels of the upright picture,
/// origin top-left.
struct PromptWindowExtraction {
  struct Detecting {
    bool operator==(const Detecting&) const = default;
  };
  struct Extracted {
    QRectF crop;  ///< the window's frame, without its shadow
    bool operator==(const Extracted&) const = default;
  };
  /// A decision was made, and the window is taking the screenshot's place.
  struct Saving {
    QRectF crop;
    bool operator==(const Saving&) const = default;
  };
  using Phase = std::variant<Detecting, Extracted, Saving>;

  UUID itemID;
  Phase phase;
  bool operator==(const PromptWindowExtraction&) const = default;

  /// What is shown of the picture; none for all of it.
  static std::optional<QRectF> shownPart(const Phase& phase);
  /// Whether nothing can be decided in this phase.
  static bool isBusy(const Phase& phase) { return !std::holds_alternative<Extracted>(phase); }
};

/// What the popup tells briefly over its preview.
enum class PromptPreviewNotice { textCopied, noText, noWindow, alreadyWindow };
QString text(PromptPreviewNotice notice);

}  // namespace quillmere
