#pragma once

#include <QtCore/QtGlobal>
#include <optional>

namespace quillmere::KeyCodes {

// Shortcuts are stored by numbers of their own for the places of a keyboard; the kernel's numbers (evdev) for the same
// places are another order. X servers and compositors count the kernel's from 8 on.
constexpr quint32 kFirstScanCode = 8;

std::optional<quint32> evdev(quint32 stored);
std::optional<quint32> stored(quint32 evdev);

/// Whether it belongs to the block of digits at the side.
bool isKeypad(quint32 stored);

}  // namespace quillmere::KeyCodes
