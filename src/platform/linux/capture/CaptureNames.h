#pragma once

#include <QtCore/QDate>
#include <optional>
#include <string_view>

namespace quillmere {

/// A name that a capture tool gives, in any language that it speaks, or one of another system's that came by sync. What
/// only looks like one, as an invoice with a date and a time, is none.
struct CaptureName {
  static std::optional<CaptureName> of(std::string_view fileName);

  /// When the screenshot was taken, on the calendar of this machine; none where the name has no date.
  std::optional<QDate> day;
};

}  // namespace quillmere
