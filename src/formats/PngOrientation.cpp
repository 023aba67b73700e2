#include "formats/PngOrientation.h"

#include <QtGui/QColorSpace>
#include <QtGui/QTransform>
#include <array>
#include <string>

#include "formats/TiffTags.h"
#include "png/PngChunks.h"

namespace quillmere {
namespace {

/// By the number in camera data; the first is none.
QImageIOHandler::Transformations transformationFor(int orientation) {
  using Turn = QImageIOHandler;
  constexpr std::array<QImageIOHandler::Transformation, 9> kTurns{
      Turn::TransformationNone,      Turn::TransformationNone,
      Turn::TransformationMirror,    Turn::TransformationRotate180,
      Turn::TransformationFlip,      Turn::TransformationFlipAndRotate90,
      Turn::TransformationRotate90,  Turn::TransformationMirrorAndRotate90,
      Turn::TransformationRotate270,
  };
  return kTurns.at(static_cast<size_t>(orientation));
}

}  // namespace

QImageIOHandler::Transformations pngOrientation(QIODevice& file) {
  constexpr qint64 kHead = 8;  // length and type
  constexpr qint64 kChecksum = 4;
  constexpr qint64 kMostCameraData = 1 << 20;
  constexpr int kMostChunks = 1 << 17;
  qint64 place = kPngSignature.size();
  for (int chunk = 0; chunk < kMostChunks && file.seek(place); ++chunk) {
    const QByteArray head = file.read(kHead);
    if (head.size() < kHead) break;
    const std::string_view view(head.constData(), kHead);
    const qint64 whole = kHead + bigEndian32(view) + kChecksum;
    const std::string_view type = view.substr(4);
    if (type == "IEND") break;
    if (type == "eXIf") {
      if (whole > kMostCameraData) break;
      const std::string bytes = std::string(kPngSignature) + (head + file.read(whole - kHead)).toStdString();
      const auto cameraData = PngChunks(bytes).next();
      return cameraData && cameraData->isIntact() ? transformationFor(tiffOrientation(cameraData->data))
                                                  : QImageIOHandler::TransformationNone;
    }
    place += whole;
  }
  return QImageIOHandler::TransformationNone;
}

QImage upright(const QImage& stored, QImageIOHandler::Transformations orientation) {
  if (stored.isNull() || orientation == QImageIOHandler::TransformationNone) return stored;
  QImage result = stored.mirrored(orientation.testFlag(QImageIOHandler::TransformationMirror),
                                  orientation.testFlag(QImageIOHandler::TransformationFlip));
  if (orientation.testFlag(QImageIOHandler::TransformationRotate90)) {
    result = result.transformed(QTransform().rotate(90));
    result.setColorSpace(stored.colorSpace());
  }
  return result;
}

}  // namespace quillmere
