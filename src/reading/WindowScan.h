#pragma once

#include <QtGui/QImage>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/DetectedWindow.h"
#include "reading/KnownWindows.h"
#include "reading/OperationError.h"

namespace quillmere {
class PictureReading;

namespace ImageOperations {

/// A picture, read once, with the windows in it.
struct WindowScan {
  QImage image;                         ///< at full size and upright
  std::vector<DetectedWindow> windows;  ///< largest first
};

/// Reads the picture and finds its windows in the background; those that are `known` of its pixels stand in for what
/// would be found. A file that `isDataless` is not read and fails as unreadable; it is asked there too. One that is
/// cancelled stops before its next step.
Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, std::shared_ptr<PictureReading> pictures,
                                                     FileURL url, std::optional<KnownWindows> known = {},
                                                     std::function<bool(const FileURL&)> isDataless = {});

}  // namespace ImageOperations
}  // namespace quillmere
