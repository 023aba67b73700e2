#include "formats/TiffTags.h"

#include <gtest/gtest.h>

#include "formats/Tiffs.h"

namespace quillmere {
namespace {

using testing::littleEndian;
using testing::orientationTiff;
using testing::tiff;

TEST(TiffResolution, IsReadInEitherOrderOfBytes) {
  EXPECT_EQ(tiffResolution(tiff(144, 1, 2)), 144);
  EXPECT_EQ(tiffResolution(tiff(144, 1, 2, &littleEndian)), 144);
  EXPECT_EQ(tiffResolution(tiff(287, 2, 2)), 143.5);
}

TEST(TiffResolution, IsInInchesUnlessTheUnitSaysOtherwise) {
  EXPECT_EQ(tiffResolution(tiff(72, 1, std::nullopt)), 72);
  EXPECT_EQ(tiffResolution(tiff(100, 1, 3)), 254);
  EXPECT_EQ(tiffResolution(tiff(72, 1, 1)), std::nullopt) << "no unit of length";
  EXPECT_EQ(tiffResolution(tiff(72, 1, 9)), std::nullopt);
}

TEST(TiffResolution, IsNoneOfNonsense) {
  EXPECT_EQ(tiffResolution({}), std::nullopt);
  EXPECT_EQ(tiffResolution("MM"), std::nullopt);
  EXPECT_EQ(tiffResolution("XX" + tiff(72, 1, 2).substr(2)), std::nullopt);
  EXPECT_EQ(tiffResolution(tiff(72, 0, 2)), std::nullopt);
  EXPECT_EQ(tiffResolution(tiff(0, 1, 2)), std::nullopt);
  EXPECT_EQ(tiffResolution(std::string("MM\0*\xff\xff\xff\xff", 8)), std::nullopt);
  const std::string whole = tiff(72, 1, 2);
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(tiffResolution(std::string_view(whole).substr(0, length)), std::nullopt) << length;
  }
}

TEST(TiffOrientation, IsReadInEitherOrderOfBytes) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    EXPECT_EQ(tiffOrientation(orientationTiff(orientation)), orientation);
    EXPECT_EQ(tiffOrientation(orientationTiff(orientation, &littleEndian)), orientation);
  }
}

TEST(TiffOrientation, IsUprightWhereItIsNotTold) {
  EXPECT_EQ(tiffOrientation({}), 1);
  EXPECT_EQ(tiffOrientation(tiff(72, 1, 2)), 1);
  EXPECT_EQ(tiffOrientation(orientationTiff(0)), 1);
  EXPECT_EQ(tiffOrientation(orientationTiff(9)), 1);
  const std::string whole = orientationTiff(6);
  const size_t value = 8 + 2 + 8 + 2;
  for (size_t length = 0; length < value; ++length) {
    EXPECT_EQ(tiffOrientation(std::string_view(whole).substr(0, length)), 1) << length;
  }
}

}  // namespace
}  // namespace quillmere
