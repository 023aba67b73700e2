#include "formats/JpegOutline.h"

#include "formats/Pictures.h"

namespace quillmere {
namespace {

using testing::encoded;
using testing::oriented;
using testing::redAndBlue;

std::string comment(size_t length) {
  const size_t whole = length + 2;
  return std::string("\xFF\xFE") + static_cast<char>(whole >> 8) + static_cast<char>(whole & 0xFF) +
         std::string(length, 'c');
}
std::string usual() {
  return encoded(redAndBlue(48, 32), "JPEG");
}
std::string withComments(int count) {
  std::string comments;
  for (int i = 0; i < count; ++i) comments += comment(20);
  return usual().insert(2, comments);
}

TEST(JpegOutlineTest, TellsSizeComponentsAndScans) {
  const auto outline = JpegOutline::of(usual());
  ASSERT_TRUE(outline);
  EXPECT_EQ(outline->width, 48U);
  EXPECT_EQ(outline->height, 32U);
  EXPECT_EQ(outline->components, 3);
  EXPECT_EQ(outline->scans, 1);
  EXPECT_TRUE(outline->isWhole);
  EXPECT_FALSE(outline->comesInScans());
}

TEST(JpegOutlineTest, OfItsBeginningTellsAllButItsEnd) {
  const std::string file = usual();
  const size_t scan = file.find("\xFF\xDA");
  const auto outline = JpegOutline::of(file.substr(0, scan + 14));
  ASSERT_TRUE(outline);
  EXPECT_EQ(outline->width, 48U);
  EXPECT_FALSE(outline->isWhole);
  EXPECT_FALSE(JpegOutline::of(file.substr(0, scan)));
  EXPECT_FALSE(JpegOutline::of("no picture"));
}

TEST(JpegOutlineTest, CountsEveryScanAndWhatStandsBeside) {
  std::string file = usual();
  const size_t scan = file.find("\xFF\xDA");
  const std::string again = file.substr(scan, 14);
  file.insert(file.size() - 2, again + again + comment(1000));
  const auto outline = JpegOutline::of(file);
  ASSERT_TRUE(outline);
  EXPECT_EQ(outline->scans, 3);
  EXPECT_GE(outline->besidesPixels, JpegOutline::of(usual())->besidesPixels + 1000);
}

TEST(JpegOutlineTest, ManySegmentsAreMoreThanAThousand) {
  EXPECT_FALSE(JpegOutline::hasManySegments(withComments(900)));
  EXPECT_TRUE(JpegOutline::hasManySegments(withComments(1100)));
}

TEST(JpegOutlineTest, WithoutTextsThePictureAndItsFirstCameraDataAreLeft) {
  EXPECT_EQ(withoutJpegTexts(usual()), usual());
  EXPECT_EQ(withoutJpegTexts(withComments(3)), usual());
  const std::string turned = oriented(usual(), 6);
  EXPECT_EQ(withoutJpegTexts(turned), turned);
  EXPECT_EQ(withoutJpegTexts(oriented(turned, 3)), oriented(usual(), 3)) << "the first alone";
  const std::string cut = withComments(3).substr(0, 40);
  EXPECT_LE(withoutJpegTexts(cut).size(), cut.size());
}

}  // namespace
}  // namespace quillmere
