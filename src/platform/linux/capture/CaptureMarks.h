#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere {

/// By what a file is known as a screen capture when it carries no tag: the marks that Linux capture tools leave in a
/// PNG's text, and the names that they give. Date shapes come before words, since the words are translated.
namespace CaptureMarks {

using TextChunks = std::vector<std::pair<std::string, std::string>>;

/// Whether one of a PNG's text chunks (key, value) is a capture tool's.
bool isCaptureText(const TextChunks& chunks);

/// Whether the name is one that a capture tool gives.
bool isCaptureName(std::string_view fileName);

/// The text chunks (tEXt, and iTXt that is not compressed) that stand before the picture's data; none for anything but
/// a PNG. Reads at most 1 MiB of the file.
TextChunks readTextChunks(const FileURL& url);

/// The name or the text says so.
bool marksCapture(const FileURL& url);

}  // namespace CaptureMarks
}  // namespace quillmere
