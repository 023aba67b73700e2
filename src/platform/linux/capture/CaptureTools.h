#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/capture/CaptureEnvironment.h"
#include "platform/linux/capture/CaptureTool.h"

namespace quillmere {

/// The tool with which screenshots are most likely taken here: the desktop's own one if it is installed; else, of those
/// installed, the first that is configured; else the first. Where none is installed, one with nothing to configure.
std::unique_ptr<CaptureTool> captureToolInUse(const CaptureEnvironment& environment);

/// The command, in words, that opens that tool's options, or its window where those are a click away. Empty where there
/// is no such window.
std::vector<std::string> optionsCommandInUse(const CaptureEnvironment& environment);

}  // namespace quillmere
