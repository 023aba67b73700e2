#pragma once

#include <QtCore/QRectF>
#include <optional>
#include <string>

#include "foundation/FileURL.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// The screen-capture attributes of a file that came from a desktop which writes them: property lists in extended
/// attributes, under the names that file servers give them here. Any thread.
namespace ScreenCaptureAttributes {

/// None where there is no such attribute; false for one that is not a Boolean or a number.
std::optional<bool> isScreenCapture(const FileURL& url);
std::optional<CaptureKind> captureKind(const FileURL& url);
/// In points of the global screen, origin top-left.
std::optional<QRectF> globalRect(const FileURL& url);

}  // namespace ScreenCaptureAttributes

/// The values of those attributes, as property lists in the binary or the XML form. Some file servers append one NUL.
namespace ScreenCaptureValues {

/// False for what is not a Boolean or a number.
bool isScreenCapture(const std::string& value);
std::optional<CaptureKind> captureKind(const std::string& value);
/// Four whole or real numbers: x, y, width, height.
std::optional<QRectF> globalRect(const std::string& value);

}  // namespace ScreenCaptureValues

/// The attribute where it is present, else the marks of the capture tools.
bool hasScreenCaptureTag(const FileURL& url);

}  // namespace quillmere
