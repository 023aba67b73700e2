#pragma once

#include "model/AppModelDependencies.h"

namespace quillmere {

/// Speaks through the accessibility bus, in the form that screen readers hear; silent when no assistive technology
/// runs.
class LiveAnnouncer final : public Announcing {
 public:
  void announce(const QString& text, AnnouncementPriority priority) override;
};

}  // namespace quillmere
