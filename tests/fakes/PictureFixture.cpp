#include "fakes/PictureFixture.h"

namespace quillmere::testing {

QImage PictureFixture::picture() {
  QImage image(100, 80, QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgb(2 * x, 3 * y, 7));
  }
  return image;
}

UUID PictureFixture::arrivePicture(std::string_view name) {
  const FileURL url = shots.appending(name);
  const auto data = ImageOperations::encode(picture(), ImageOperations::imageType(url));
  EXPECT_TRUE(data);
  writeFile(url, data->toStdString());
  monitor.onScreenshot(url);
  return model->items()[0].id;
}

QSize PictureFixture::sizeOf(const FileURL& url) {
  const auto image = ImageOperations::loadImage(url);
  return image ? image->size() : QSize();
}

}  // namespace quillmere::testing
