#include "analysis/ModelPicture.h"

#include <QtGui/QImage>

#include "fakes/DecodedPictures.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"
#include "support/Files.h"
#include "support/Images.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class ModelPictureTest : public ::testing::Test {
 protected:
  FileURL write(const char* name, const QByteArray& bytes) {
    testing::writeFile(folder.file(name), bytes.toStdString());
    return folder.file(name);
  }
  static QByteArray encoded(int width, int height, PictureFormat type) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    return *ImageOperations::encode(image, type);
  }
  testing::TemporaryFolder folder;
  testing::DecodedPictures pictures;
};

TEST_F(ModelPictureTest, ASmallPngOrJpegIsSentAsItIs) {
  const QByteArray png = encoded(ModelPicture::kLongestSide, 10, PictureFormat::png);
  const QByteArray jpeg = encoded(10, ModelPicture::kLongestSide, PictureFormat::jpeg);
  const auto first = ModelPicture::read(pictures, write("a", png));
  const auto second = ModelPicture::read(pictures, write("b.png", jpeg));
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->bytes, png);
  EXPECT_STREQ(first->type, "image/png");
  EXPECT_EQ(second->bytes, jpeg);
  EXPECT_STREQ(second->type, "image/jpeg") << "by what is in the file";
}

TEST_F(ModelPictureTest, ALargePictureIsMadeSmaller) {
  for (const auto type : {PictureFormat::png, PictureFormat::jpeg}) {
    const auto picture = ModelPicture::read(pictures, write("a", encoded(ModelPicture::kLongestSide * 2, 1000, type)));
    ASSERT_TRUE(picture);
    EXPECT_STREQ(picture->type, "image/png");
    EXPECT_EQ(QImage::fromData(picture->bytes).size(), QSize(ModelPicture::kLongestSide, 500));
  }
}

TEST_F(ModelPictureTest, AFormatThatServersDoNotReadIsTurnedIntoAnother) {
  const auto picture = ModelPicture::read(pictures, write("a.heic", encoded(64, 32, PictureFormat::heif)));
  ASSERT_TRUE(picture);
  EXPECT_STREQ(picture->type, "image/png");
  EXPECT_EQ(QImage::fromData(picture->bytes).size(), QSize(64, 32));
}

TEST_F(ModelPictureTest, ASmallPictureThatCarriesMuchElseIsSentAlone) {
  const std::string text(5 << 20, 'x');
  testing::writeFile(folder.file("a.png"), testing::pngWith(testing::textChunk("Comment", text)));
  const auto picture = ModelPicture::read(pictures, folder.file("a.png"));
  ASSERT_TRUE(picture);
  EXPECT_LT(picture->bytes.size(), 1000);
}

TEST_F(ModelPictureTest, AFileThatIsNoPictureIsNone) {
  EXPECT_FALSE(ModelPicture::read(pictures, folder.file("missing")));
  EXPECT_FALSE(ModelPicture::read(pictures, folder.url()));
  EXPECT_FALSE(ModelPicture::read(pictures, write("a.png", "not a picture")));
  EXPECT_FALSE(ModelPicture::read(pictures, write("b.png", "")));
}

}  // namespace
}  // namespace quillmere
