#pragma once

#include <QtGui/QImage>
#include <functional>
#include <vector>

#include "detection/DetectedWindows.h"
#include "formats/ImageOperations.h"
#include "foundation/Executor.h"

namespace quillmere::ImageOperations {

/// A picture, read once, with the windows in it.
struct WindowScan {
  QImage image;                         ///< at full size and upright
  std::vector<DetectedWindow> windows;  ///< largest first
};

/// Reads the picture and finds its windows in the background. A file that `isDataless` is not read and fails as
/// unreadable; it is asked there too. One that is cancelled stops before its next step.
Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, FileURL url,
                                                     std::function<bool(const FileURL&)> isDataless = {});
/// The same at once, for a thread that may wait. `isStopped` is asked between its steps.
Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped = {});

}  // namespace quillmere::ImageOperations
