#pragma once

#include "model/AppModelDependencies.h"
#include "platform/linux/announcing/AccessibilityEvents.h"
#include "platform/linux/announcing/AnnouncementQueue.h"
#include "platform/linux/announcing/ScreenReaderWatch.h"
#include "platform/linux/announcing/SpeechService.h"

namespace quillmere {

/// Tells what happened to the person's screen reader, once, in the form that it hears; silent when none runs.
class LiveAnnouncer final : public Announcing {
 public:
  explicit LiveAnnouncer(Executor& executor)
      : reader_(executor), notifications_(executor, [this](const QString& text) { events_.notify(text); }) {}
  void announce(const QString& text, AnnouncementPriority priority) override;

 private:
  ScreenReaderWatch reader_;
  AccessibilityEvents events_;
  AnnouncementQueue notifications_;
  SpeechService speech_;
};

}  // namespace quillmere
