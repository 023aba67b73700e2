#include "platform/linux/announcing/LiveAnnouncer.h"

namespace quillmere {

void LiveAnnouncer::announce(const QString& text, AnnouncementPriority priority) {
  Hearing hearing = reader_.hearing();
  const bool goesByBus = hearing == Hearing::announcement || hearing == Hearing::notification;
  if (goesByBus && !AccessibilityEvents::isPossible()) hearing = Hearing::speechService;
  switch (hearing) {
    case Hearing::nobody:
      break;
    case Hearing::announcement:
      AccessibilityEvents::announce(text, priority);
      break;
    case Hearing::notification:
      notifications_.add(text, priority);
      break;
    case Hearing::speechService:
      speech_.say(text, priority);
      break;
  }
}

}  // namespace quillmere
