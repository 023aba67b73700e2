#include "controls/PictureMimeData.h"

#include <QtCore/QBuffer>
#include <QtCore/QUrl>
#include <QtGui/QImage>

#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;

const QString kPng = QStringLiteral("image/png");
const QString kJpeg = QStringLiteral("image/jpeg");

class PictureMimeDataTest : public ::testing::Test {
 protected:
  /// A file of this name with these bytes.
  FileURL file(const std::string& name, const QByteArray& bytes = "bytes") {
    const FileURL url = folder.file(name);
    testing::writeFile(url, bytes.toStdString());
    return url;
  }
  static QByteArray encoded(const char* format) {
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
  }
  TemporaryFolder folder;
};

TEST_F(PictureMimeDataTest, OffersTheBytesAndTheFile) {
  const PictureMimeData data(file("shot.png"), kPng, "given");
  EXPECT_EQ(data.formats(),
            (QStringList{kPng, QStringLiteral("text/uri-list"), QStringLiteral("x-special/gnome-copied-files"),
                         QStringLiteral("application/x-kde-cutselection")}));
  for (const QString& format : data.formats()) EXPECT_TRUE(data.hasFormat(format));
  EXPECT_FALSE(data.hasFormat(kJpeg));
  EXPECT_EQ(data.data(kPng), "given");
  EXPECT_EQ(data.data(QStringLiteral("application/x-kde-cutselection")), "0");
}

TEST_F(PictureMimeDataTest, AWindowThatIsInNoFileIsAPictureAlone) {
  const PictureMimeData data(std::nullopt, kPng, "given");
  EXPECT_EQ(data.formats(), QStringList{kPng});
  EXPECT_EQ(data.data(kPng), "given");
  EXPECT_FALSE(data.hasUrls());
  EXPECT_FALSE(data.hasText());
}

TEST_F(PictureMimeDataTest, BytesThatAreNotGivenAreReadWhenTheyAreAskedFor) {
  const FileURL url = file("shot.png", "first");
  const PictureMimeData data(url, kPng, std::nullopt);
  testing::writeFile(url, "second");
  EXPECT_EQ(data.data(kPng), "second");
  std::filesystem::remove(url.path());
  EXPECT_TRUE(data.data(kPng).isEmpty());
}

TEST_F(PictureMimeDataTest, AJpegStaysOne) {
  const QByteArray jpeg = encoded("JPG");
  const PictureMimeData data(file("shot.jpg", jpeg), kJpeg, std::nullopt);
  EXPECT_EQ(data.data(kJpeg), jpeg);
  EXPECT_FALSE(data.hasFormat(kPng));
  EXPECT_TRUE(data.data(kPng).isEmpty());
}

struct Name {
  const char* fact;
  std::string name;
  QByteArray coded;
};

void PrintTo(const Name& name, std::ostream* out) {
  *out << name.fact;
}

class NameOfAFileTest : public PictureMimeDataTest, public ::testing::WithParamInterface<Name> {};

TEST_P(NameOfAFileTest, SurvivesInEveryForm) {
  const FileURL url = file(GetParam().name);
  const PictureMimeData data(url, kPng, std::nullopt);
  const QByteArray coded = QByteArray::fromStdString(folder.url().coded()) + "/" + GetParam().coded;
  EXPECT_EQ(data.data(QStringLiteral("text/uri-list")), coded + "\r\n");
  EXPECT_EQ(data.data(QStringLiteral("x-special/gnome-copied-files")), "copy\n" + coded);
  EXPECT_EQ(data.data(kPng), "bytes");
  EXPECT_EQ(data.text(), url.displayPath());
}

INSTANTIATE_TEST_SUITE_P(PictureMimeData, NameOfAFileTest,
                         ::testing::Values(Name{"blanks", "a b.png", "a%20b.png"},
                                           Name{"percent", "50%20.png", "50%2520.png"},
                                           Name{"a line feed", "a\nb.png", "a%0Ab.png"},
                                           Name{"a carriage return", "a\rb.png", "a%0Db.png"},
                                           Name{"double quotes", "\"a\".png", "%22a%22.png"},
                                           Name{"a number sign", "#1?.png", "%231%3F.png"},
                                           Name{"letters beyond ASCII", "\xC3\xBC.png", "%C3%BC.png"},
                                           Name{"bytes that are no text", "a\xFF\xFE.png", "a%FF%FE.png"}),
                         [](const auto& tested) {
                           std::string name = tested.param.fact;
                           std::erase(name, ' ');
                           return name;
                         });

}  // namespace
}  // namespace quillmere
