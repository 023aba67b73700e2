// A picture on its way to another application, when the disk for such files is full.

#include "model/ScreenshotTransfer.h"

#include "fakes/DecodedPictures.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

const std::string kLarge(1 << 20, 'x');

class TransferOnFullDiskTest : public ::testing::Test {
 protected:
  /// With a disk on which the picture has no room.
  std::string withSmallDisk(const std::function<std::string()>& work) const {
    return testing::failureWithPrivateMounts([&]() -> std::string {
      MUST(::mount("none", disk.c_str(), "tmpfs", 0, "size=64k") == 0);
      return work();
    });
  }
  testing::TemporaryFolder folder;
  FileURL disk = folder.file("disk");
  FileURL shot = folder.file("shot.png");
  UUID record = UUID::createUuid();
  PromptPreviewTransfer transfer{shot, std::nullopt, "Invoice.png"};
  mutable testing::DecodedPictures pictures;
  TransferFiles files{disk.appending("transfers")};
};

TEST_F(TransferOnFullDiskTest, ACopyFailsAndLeavesNothing) {
  std::filesystem::create_directory(disk.path());
  testing::writeFile(shot, kLarge);
  EXPECT_EQ(withSmallDisk([&]() -> std::string {
              const auto file = files.file(record, transfer, pictures);
              MUST(!file);
              MUST(std::filesystem::is_empty(disk.appending("transfers").path()));
              return {};
            }),
            "");
  EXPECT_EQ(testing::readBytes(shot), kLarge);
}

TEST_F(TransferOnFullDiskTest, ACropFailsAndLeavesNothing) {
  std::filesystem::create_directory(disk.path());
  testing::writeFile(shot, kLarge);
  // Of pixels that no encoder makes smaller than the disk.
  QImage image(400, 400, QImage::Format_RGB32);
  uint32_t state = 1;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, state = state * 1664525 + 1013904223);
  }
  transfer.crop = PromptPreviewTransfer::Crop{image, QRectF(0, 0, 400, 400)};
  EXPECT_EQ(withSmallDisk([&]() -> std::string {
              const auto file = files.file(record, transfer, pictures);
              MUST(!file);
              MUST(std::filesystem::is_empty(disk.appending("transfers").path()));
              return {};
            }),
            "");
}

}  // namespace
}  // namespace quillmere
