#include "formats/PngOrientation.h"

#include <gtest/gtest.h>
#include <QtCore/QBuffer>
#include <QtGui/QColorSpace>

#include "formats/Pictures.h"

namespace quillmere {
namespace {

using testing::orientationTiff;
using testing::pngChunk;
using testing::pngWith;

QImageIOHandler::Transformations orientationOf(const std::string& bytes) {
  QByteArray array = QByteArray::fromStdString(bytes);
  QBuffer buffer(&array);
  buffer.open(QIODevice::ReadOnly);
  return pngOrientation(buffer);
}

TEST(PngOrientation, IsReadBeforeAndAfterTheData) {
  const std::string chunk = pngChunk("eXIf", orientationTiff(6));
  EXPECT_EQ(orientationOf(pngWith(chunk)), QImageIOHandler::TransformationRotate90);
  EXPECT_EQ(orientationOf(testing::orientedPng(pngWith({}), 8)), QImageIOHandler::TransformationRotate270);
}

TEST(PngOrientation, IsThatOfTheFirstChunk) {
  const std::string two = pngChunk("eXIf", orientationTiff(3)) + pngChunk("eXIf", orientationTiff(6));
  EXPECT_EQ(orientationOf(pngWith(two)), QImageIOHandler::TransformationRotate180);
}

TEST(PngOrientation, IsNoneWhereItIsNotToldOrDamaged) {
  EXPECT_EQ(orientationOf(pngWith({})), QImageIOHandler::TransformationNone);
  EXPECT_EQ(orientationOf({}), QImageIOHandler::TransformationNone);
  EXPECT_EQ(orientationOf(pngWith(pngChunk("eXIf", {}))), QImageIOHandler::TransformationNone);
  EXPECT_EQ(orientationOf(pngWith({}) + pngChunk("eXIf", orientationTiff(6))), QImageIOHandler::TransformationNone)
      << "behind the end";
  std::string damaged = pngChunk("eXIf", orientationTiff(6));
  damaged.back() = static_cast<char>(damaged.back() ^ 1);
  EXPECT_EQ(orientationOf(pngWith(damaged)), QImageIOHandler::TransformationNone);
  const std::string whole = pngWith(pngChunk("eXIf", orientationTiff(6)));
  const size_t place = whole.find("eXIf");
  for (size_t length = 0; length < place + 4; ++length) {
    EXPECT_EQ(orientationOf(whole.substr(0, length)), QImageIOHandler::TransformationNone) << length;
  }
}

TEST(PngOrientation, ATurnedPictureKeepsResolutionAndColourSpace) {
  QImage stored(4, 2, QImage::Format_RGB32);
  stored.fill(Qt::red);
  stored.setDotsPerMeterX(5670);
  stored.setDotsPerMeterY(5670);
  stored.setColorSpace(QColorSpace::DisplayP3);
  const QImage turned = upright(stored, QImageIOHandler::TransformationRotate90);
  EXPECT_EQ(turned.size(), QSize(2, 4));
  EXPECT_EQ(turned.format(), QImage::Format_RGB32);
  EXPECT_EQ(turned.dotsPerMeterX(), 5670);
  EXPECT_EQ(turned.colorSpace(), QColorSpace(QColorSpace::DisplayP3));
  EXPECT_EQ(upright(stored, QImageIOHandler::TransformationNone), stored);
  EXPECT_TRUE(upright({}, QImageIOHandler::TransformationRotate90).isNull());
}

}  // namespace
}  // namespace quillmere
