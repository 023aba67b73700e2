#pragma once

#include <functional>

#include "update/library/UpdateNotice.h"

namespace quillmere {

/// The one window of an update, as its session sees it. Nothing waits for it.
class UpdateWindows {
 public:
  enum class Answer { safe, action };

  virtual ~UpdateWindows() = default;
  /// In the place of what it showed. Answered once at most, not from within the call.
  virtual void show(const UpdateNotice& notice, std::function<void(Answer)> answered) = 0;
  /// Of what it shows is so much done.
  virtual void setProgress(qint64 done, qint64 whole) = 0;
  virtual void bringForward() = 0;
  virtual void close() = 0;
};

}  // namespace quillmere
