#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "detection/DetectedWindows.h"
#include "formats/PixelMemory.h"
#include "reading/WindowScan.h"

namespace quillmere::ImageOperations {

/// Reads the picture and finds its windows, at once; those that are known of its pixels stand in for what would be
/// found. `isStopped` is asked between its steps.
Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped = {},
                                                  const std::optional<KnownWindows>& known = {});
/// The same of a file that was read already; its bytes are let go before the search, which takes memory of its own. The
/// picture may be made in `memory`.
Result<WindowScan, OperationError> scanWindowsNow(std::string bytes, const std::function<bool()>& isStopped = {},
                                                  PixelMemory* memory = nullptr,
                                                  const std::optional<KnownWindows>& known = {});

}  // namespace quillmere::ImageOperations
