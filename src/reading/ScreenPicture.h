#pragma once

#include <QtGui/QImage>

namespace quillmere {

/// In the colours of the screen, which takes what it is given for sRGB, and as it is painted without being converted
/// each time: RGB32, or premultiplied where there is an alpha channel. What is so already is not copied. Any thread.
QImage pictureForScreen(QImage image);

}  // namespace quillmere
