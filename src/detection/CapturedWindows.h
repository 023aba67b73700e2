#pragma once

#include <QtGui/QImage>
#include <optional>
#include <vector>

#include "reading/KnownWindows.h"
#include "reading/WindowStack.h"

/// Which windows a picture of the screen shows: what the window system knew when it was taken, as far as the picture's
/// own edges confirm it.
namespace quillmere::CapturedWindows {

/// `states` of the window system, the oldest first, and when the picture's file was complete. None where nothing is
/// sure. Not for the main thread.
std::optional<KnownWindows> resolve(const QImage& picture, const std::vector<WindowStack>& states, Date closedAt);

/// What tells a picture's pixels from others.
uint32_t checksum(const QImage& picture);

}  // namespace quillmere::CapturedWindows
