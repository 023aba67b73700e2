#pragma once

#include <QtGui/QImage>
#include <vector>

#include "foundation/Executor.h"
#include "imaging/DetectedWindows.h"
#include "imaging/ImageOperations.h"

namespace quillmere::ImageOperations {

/// A picture, read once, with the windows in it.
struct WindowScan {
  QImage image;                         ///< at full size and upright
  std::vector<DetectedWindow> windows;  ///< largest first
};

/// Reads the picture and finds its windows in the background.
Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, FileURL url);
/// The same at once, for a thread that may wait.
Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url);

}  // namespace quillmere::ImageOperations
