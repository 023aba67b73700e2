#include "formats/PictureOutline.h"

#include "formats/Pictures.h"

namespace quillmere {
namespace {

using testing::encoded;
using testing::redAndBlue;

std::optional<PictureError> reason(std::string_view file, const PictureBudget& budget) {
  const auto outline = PictureOutline::of(file, budget);
  return outline ? std::nullopt : std::optional(outline.reason());
}

TEST(PictureOutlineTest, TellsWhatAPictureTakes) {
  for (const char* format : {"PNG", "JPEG"}) {
    const auto outline = PictureOutline::of(encoded(redAndBlue(40, 20), format), {});
    ASSERT_TRUE(outline) << format;
    EXPECT_EQ(outline->stored, QSize(40, 20));
    EXPECT_EQ(outline->pictureBytes, 40 * 20 * 4);
    EXPECT_GE(outline->memory, outline->pictureBytes);
  }
}

TEST(PictureOutlineTest, TheBeginningTellsTheSame) {
  for (const char* format : {"PNG", "JPEG"}) {
    const std::string file = encoded(redAndBlue(40, 20), format);
    const auto size = static_cast<int64_t>(file.size());
    const size_t head = std::string_view(format) == "PNG" ? 33 : file.find("\xFF\xDA") + 14;
    const auto outline = PictureOutline::ofBeginning(file.substr(0, head), size, {});
    ASSERT_TRUE(outline) << format;
    EXPECT_EQ(outline->memory, PictureOutline::of(file, {})->memory);
  }
}

TEST(PictureOutlineTest, EachPartOfTheBudgetCounts) {
  const std::string png = encoded(redAndBlue(40, 20), "PNG");
  const std::string jpeg = encoded(redAndBlue(40, 20), "JPEG");
  EXPECT_EQ(reason(png, {}), std::nullopt);
  EXPECT_EQ(reason(png, {.fileBytes = 100}), PictureError::tooCostly);
  EXPECT_EQ(reason(png, {.pictureBytes = 40 * 20 * 4 - 1}), PictureError::tooCostly);
  EXPECT_EQ(reason(png, {.memory = 40 * 20 * 4}), PictureError::tooCostly) << "the file's bytes count";
  EXPECT_EQ(reason(jpeg, {}), std::nullopt);
  EXPECT_EQ(reason(jpeg, {.besidesPixels = 100}), PictureError::tooCostly);
  EXPECT_EQ(reason(jpeg, {.scans = 0}), PictureError::tooCostly);
  EXPECT_EQ(reason(jpeg, {.scannedPixels = 40 * 20 - 1}), PictureError::tooCostly);
  EXPECT_EQ(reason(jpeg, {.scannedPixels = 40 * 20}), std::nullopt);
}

TEST(PictureOutlineTest, WhatIsNoPictureIsToldApartFromWhatIsADamagedOne) {
  EXPECT_EQ(reason("GIF89a, and so on", {}), PictureError::noPicture);
  EXPECT_EQ(reason({}, {}), PictureError::noPicture);
  EXPECT_EQ(reason(encoded(redAndBlue(40, 20), "PNG").substr(0, 30), {}), PictureError::damaged);
  EXPECT_EQ(reason(encoded(redAndBlue(40, 20), "JPEG").substr(0, 30), {}), PictureError::damaged);
}

}  // namespace
}  // namespace quillmere
