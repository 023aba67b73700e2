#include "model/ScreenshotTransfer.h"

#include <gtest/gtest.h>
#include <filesystem>

#include "fakes/DecodedPictures.h"
#include "formats/ImageFile.h"
#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

const FileURL kShot = FileURL::fromPath("/shots/Screenshot 1.png");
const UUID kRecord = uuid(1);
const FileURL kPhoto = FileURL::fromPath("/shots/photo.jpg");

TEST(TransferName, IsTheSuggestionWithTheFilesExtension) {
  EXPECT_EQ(transferName(QStringLiteral("Invoice"), kShot, false), "Invoice.png");
  EXPECT_EQ(transferName(QStringLiteral("Invoice"), kPhoto, false), "Invoice.jpg");
}
TEST(TransferName, IsAlwaysThatOfAPngForACrop) {
  EXPECT_EQ(transferName(QStringLiteral("Invoice"), kPhoto, true), "Invoice.png");
  EXPECT_EQ(transferName(std::nullopt, kPhoto, true), "photo.png");
}
TEST(TransferName, IsTheFilesOwnWithoutAUsableSuggestion) {
  EXPECT_EQ(transferName(std::nullopt, kShot, false), "Screenshot 1.png");
  EXPECT_EQ(transferName(QStringLiteral("  "), kShot, false), "Screenshot 1.png");
  EXPECT_EQ(transferName(QStringLiteral("///"), kShot, false), "Screenshot 1.png");
}
TEST(TransferName, IsCleanedLikeAnyName) {
  EXPECT_EQ(transferName(QStringLiteral(" a/b "), kShot, false), "a b.png");
}
TEST(TransferName, HasNoFullStopWithoutAnExtension) {
  EXPECT_EQ(transferName(QStringLiteral("Invoice"), FileURL::fromPath("/shots/plain"), false), "Invoice");
}
TEST(TransferName, KeepsBytesThatAreNotText) {
  EXPECT_EQ(transferName(std::nullopt, FileURL::fromPath("/shots/a\xFF.png"), false), "a\xFF.png");
}

TEST(ImageContentType, FollowsTheExtension) {
  EXPECT_EQ(imageContentType(kShot), "image/png");
  EXPECT_EQ(imageContentType(kPhoto), "image/jpeg");
  EXPECT_EQ(imageContentType(FileURL::fromPath("/a.HEIC")), "image/heif");
}
TEST(ImageContentType, OfAFormatIsThatOfItsExtensions) {
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      const FileURL file = FileURL::fromPath("/a." + std::string(extension));
      EXPECT_EQ(imageContentType(file), imageContentType(format)) << extension;
    }
  }
}
TEST(ImageContentType, OfAnotherPictureIsTheDesktops) {
  EXPECT_EQ(imageContentType(FileURL::fromPath("/a.gif")), "image/gif");
}
TEST(ImageContentType, IsPngForWhatNamesNoPicture) {
  EXPECT_EQ(imageContentType(FileURL::fromPath("/a.txt")), "image/png");
  EXPECT_EQ(imageContentType(FileURL::fromPath("/a")), "image/png");
}

class ScreenshotTransfer : public ::testing::Test {
 protected:
  PromptPreviewTransfer transfer(std::string_view name) {
    PromptPreviewTransfer transfer;
    transfer.url = shot;
    transfer.filename = name;
    return transfer;
  }
  PromptPreviewTransfer cropped(const QRectF& rect, std::string_view name = "shot.png") {
    PromptPreviewTransfer result = transfer(name);
    QImage image(60, 50, QImage::Format_RGB32);
    image.fill(Qt::red);
    result.crop = PromptPreviewTransfer::Crop{image, rect};
    return result;
  }
  TemporaryFolder home;
  const FileURL shot = writtenFile(home.file("shot.png"), "the bytes");
  const TransferFiles files{home.file("transfers")};
  DecodedPictures pictures;

 private:
  static FileURL writtenFile(const FileURL& url, std::string_view bytes) {
    writeFile(url, bytes);
    return url;
  }
};

TEST_F(ScreenshotTransfer, OfAnUnchangedNameIsTheFileItself) {
  EXPECT_TRUE(transfer("shot.png").isFile());
  const auto file = files.file(kRecord, transfer("shot.png"), pictures);
  ASSERT_TRUE(file);
  EXPECT_EQ(*file, shot);
  EXPECT_FALSE(fileExists(home.file("transfers")));
}

TEST_F(ScreenshotTransfer, OfAnotherNameIsACopyUnderIt) {
  EXPECT_FALSE(transfer("Invoice.png").isFile());
  const auto file = files.file(kRecord, transfer("Invoice.png"), pictures);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->lastPathComponent(), "Invoice.png");
  EXPECT_EQ(readBytes(*file), "the bytes");
  EXPECT_EQ(readBytes(shot), "the bytes");
}

TEST_F(ScreenshotTransfer, OfACropIsAPng) {
  const auto file = files.file(kRecord, cropped(QRectF(5, 5, 20, 10)), pictures);
  ASSERT_TRUE(file);
  EXPECT_NE(*file, shot);
  EXPECT_EQ(file->lastPathComponent(), "shot.png");
  EXPECT_EQ(ImageFile::pixelSize(*file), QSize(20, 10));
  EXPECT_EQ(cropped(QRectF(5, 5, 20, 10)).contentType(), "image/png");
  EXPECT_EQ(readBytes(shot), "the bytes");
}

TEST_F(ScreenshotTransfer, OfAWrongCropFails) {
  const auto data = cropped(QRectF(100, 100, 5, 5)).data(pictures);
  ASSERT_FALSE(data);
  EXPECT_EQ(data.reason(), Failure(OperationError::invalidCrop));
  EXPECT_FALSE(files.file(kRecord, cropped(QRectF(0, 0, 0, 0)), pictures));
}

TEST_F(ScreenshotTransfer, GivesTheFilesBytes) {
  const auto data = transfer("Invoice.png").data(pictures);
  ASSERT_TRUE(data);
  EXPECT_EQ(*data, "the bytes");
}

TEST_F(ScreenshotTransfer, OfAVanishedFileFails) {
  std::filesystem::remove(shot.path());
  EXPECT_FALSE(transfer("shot.png").data(pictures));
  for (const char* name : {"shot.png", "Invoice.png"}) {
    const auto file = files.file(kRecord, transfer(name), pictures);
    ASSERT_FALSE(file) << name;
    EXPECT_EQ(file.reason(), Failure(OperationError::unreadable)) << name;
  }
  EXPECT_FALSE(fileExists(home.file("transfers"))) << "nothing is left of it";
}

TEST_F(ScreenshotTransfer, OfALinkThatWasPutInThePlaceFails) {
  const FileURL secret = home.file("private key");
  writeFile(secret, "secret");
  std::filesystem::remove(shot.path());
  std::filesystem::create_symlink(secret.path(), shot.path());
  EXPECT_FALSE(files.file(kRecord, transfer("shot.png"), pictures));
  EXPECT_FALSE(files.file(kRecord, transfer("Invoice.png"), pictures));
  EXPECT_FALSE(transfer("shot.png").data(pictures));
}

TEST_F(ScreenshotTransfer, IsReadableByItsOwnerAlone) {
  const auto file = files.file(kRecord, transfer("Invoice.png"), pictures);
  ASSERT_TRUE(file);
  EXPECT_EQ(std::filesystem::status(file->parent().path()).permissions(), std::filesystem::perms::owner_all);
  EXPECT_EQ(std::filesystem::status(file->parent().parent().path()).permissions(), std::filesystem::perms::owner_all);
  EXPECT_EQ(std::filesystem::status(home.file("transfers").path()).permissions(), std::filesystem::perms::owner_all);
  const auto ownerAlone = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  EXPECT_EQ(std::filesystem::status(file->path()).permissions(), ownerAlone);
  const auto window = files.file(kRecord, cropped(QRectF(5, 5, 20, 10)), pictures);
  ASSERT_TRUE(window);
  EXPECT_EQ(std::filesystem::status(window->path()).permissions(), ownerAlone);
}

TEST_F(ScreenshotTransfer, CopiesOfARecordGoTogether) {
  const auto first = files.file(kRecord, transfer("Invoice.png"), pictures);
  const auto second = files.file(kRecord, transfer("Invoice.png"), pictures);
  const auto other = files.file(uuid(2), transfer("Invoice.png"), pictures);
  ASSERT_TRUE(first && second && other);
  files.remove(kRecord);
  EXPECT_FALSE(fileExists(*first) || fileExists(*second));
  EXPECT_TRUE(fileExists(*other));
  EXPECT_TRUE(fileExists(shot));
  files.removeAll();
  EXPECT_TRUE(std::filesystem::is_empty(home.file("transfers").path()));
}

TEST_F(ScreenshotTransfer, TwoOfOneNameDoNotMeet) {
  const auto first = files.file(kRecord, transfer("Invoice.png"), pictures);
  const auto second = files.file(kRecord, transfer("Invoice.png"), pictures);
  ASSERT_TRUE(first && second);
  EXPECT_NE(*first, *second);
  EXPECT_EQ(second->lastPathComponent(), "Invoice.png");
}

TEST_F(ScreenshotTransfer, OlderThanADayIsRemovedWithTheNext) {
  using Clock = std::filesystem::file_time_type::clock;
  const auto old = files.file(uuid(2), transfer("Old.png"), pictures);
  const auto recent = files.file(uuid(3), transfer("Recent.png"), pictures);
  ASSERT_TRUE(old && recent);
  std::filesystem::last_write_time(old->parent().parent().path(), Clock::now() - std::chrono::hours(25));
  std::filesystem::last_write_time(recent->parent().parent().path(), Clock::now() - std::chrono::hours(23));
  ASSERT_TRUE(files.file(kRecord, transfer("New.png"), pictures));
  EXPECT_FALSE(fileExists(*old));
  EXPECT_TRUE(fileExists(*recent));
}

}  // namespace
}  // namespace quillmere::testing
