#pragma once

#include "foundation/Executor.h"
#include "platform/linux/capture/CaptureEnvironment.h"

namespace quillmere {

/// The options of the capture tool in use, which are a window of that tool. Found anew at every question, as the tool
/// is. Main thread.
class LiveScreenshotOptions {
 public:
  explicit LiveScreenshotOptions(Executor& executor, CaptureEnvironment environment = CaptureEnvironment::live())
      : executor_(executor), environment_(std::move(environment)) {}

  /// False where there is no tool with a window for them, as in GNOME's own shell.
  bool canOpen() const;
  /// Starts the tool, and waits for nothing.
  void open();

 private:
  Executor& executor_;
  CaptureEnvironment environment_;
};

}  // namespace quillmere
