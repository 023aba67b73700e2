#pragma once

#include <QtCore/QIODevice>
#include <QtGui/QImage>
#include <QtGui/QImageIOHandler>

namespace quillmere {

/// How the stored picture of a PNG must be turned to be upright, as its camera data say: the eXIf chunk, the first one,
/// wherever it stands (PNG, third edition, 11.3.4.5). The general reader of PNG takes no notice of it. Nothing for a
/// damaged one. Reads the frames of chunks alone, and moves the place in the device.
QImageIOHandler::Transformations pngOrientation(QIODevice& file);

/// The picture turned so, its resolution and colour space kept.
QImage upright(const QImage& stored, QImageIOHandler::Transformations orientation);

}  // namespace quillmere
