#pragma once

#include <QtCore/QDate>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Date.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// By what a file is known as a screen capture when it carries no tag: the marks that Linux capture tools leave in a
/// PNG's text, and the names that they give (`CaptureName`).
namespace CaptureMarks {

using TextChunks = std::vector<std::pair<std::string, std::string>>;

/// Whether one of a PNG's text chunks (key, value) is a capture tool's.
bool isCaptureText(const TextChunks& chunks);

/// The day of taking that the text tells, in the time zone that it was taken in.
std::optional<QDate> dayInText(const TextChunks& chunks);

/// The text chunks (tEXt, and iTXt that is not compressed) that stand before the picture's data; none for anything but
/// a PNG. Reads at most 1 MiB of the file.
TextChunks readTextChunks(const FileURL& url);

/// The name or the text says so.
bool marksCapture(const FileURL& url);

/// When it was taken at the latest, as the text or else the name tells: the end of that day here. None where neither
/// does.
std::optional<Date> captureDate(const FileURL& url);

}  // namespace CaptureMarks
}  // namespace quillmere
