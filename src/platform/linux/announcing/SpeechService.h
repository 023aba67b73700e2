#pragma once

#include <QtCore/QString>
#include <memory>

#include "model/AppModelDependencies.h"

namespace quillmere {

/// The desktop's speech service. It is asked on a thread of its own, which may wait for ever: the service may hang.
class SpeechService {
 public:
  SpeechService();
  ~SpeechService();
  /// Returns at once. What cannot be spoken is dropped, and so is the oldest when many wait.
  void say(const QString& text, AnnouncementPriority priority);

 private:
  struct Queue;
  static void speakAll(const std::shared_ptr<Queue>& queue);
  std::shared_ptr<Queue> queue_;
};

}  // namespace quillmere
