#pragma once

#include <functional>
#include <string_view>

#include "detection/DetectedWindows.h"
#include "formats/PixelMemory.h"
#include "reading/WindowScan.h"

namespace quillmere::ImageOperations {

/// Reads the picture and finds its windows, at once. `isStopped` is asked between its steps.
Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped = {});
/// The same of a file that was read already; its bytes are let go before the search, which takes memory of its own. The
/// picture may be made in `memory`.
Result<WindowScan, OperationError> scanWindowsNow(std::string bytes, const std::function<bool()>& isStopped = {},
                                                  PixelMemory* memory = nullptr);

}  // namespace quillmere::ImageOperations
