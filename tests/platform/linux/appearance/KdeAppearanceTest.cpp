#include "platform/linux/appearance/KdeAppearance.h"

#include <gtest/gtest.h>
#include <filesystem>

#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

TEST(KdeAppearanceTest, IsDarkWhereItsWindowsAre) {
  EXPECT_EQ(kdeAppearance("[Colors:Window]\nBackgroundNormal=32,35,38\n").scheme, Scheme::dark);
  EXPECT_EQ(kdeAppearance("[Colors:Window]\nBackgroundNormal=239,240,241\n").scheme, Scheme::light);
  EXPECT_EQ(kdeAppearance("[Colors:View]\nBackgroundNormal=32,35,38\n").scheme, Scheme::unknown);
  EXPECT_EQ(kdeAppearance(""), Appearance());
}

TEST(KdeAppearanceTest, ThePersonsAccentComesBeforeTheColourSchemes) {
  EXPECT_EQ(kdeAppearance("[Colors:Selection]\nBackgroundNormal=61,174,233\n").accent, QColor(61, 174, 233));
  EXPECT_EQ(
      kdeAppearance("[General]\nAccentColor=145,65,172\n\n[Colors:Selection]\nBackgroundNormal=61,174,233\n").accent,
      QColor(145, 65, 172));
  EXPECT_EQ(kdeAppearance("[General]\nAccentColor=145, 65, 172, 255\n").accent, QColor(145, 65, 172));
}

TEST(KdeAppearanceTest, WhatIsNoColourTellsNothing) {
  for (const char* text : {"", "red", "1,2", "1,2,256", "1,-2,3", "a,b,c", "1,,3"}) {
    EXPECT_EQ(kdeAppearance(std::string("[General]\nAccentColor=") + text + "\n").accent, std::nullopt) << text;
  }
}

TEST(KdeAppearanceTest, NoAnimationIsAFactorOfZero) {
  EXPECT_TRUE(kdeAppearance("[KDE]\nAnimationDurationFactor=0\n").isMotionReduced);
  EXPECT_TRUE(kdeAppearance("[KDE]\nAnimationDurationFactor=0.0\n").isMotionReduced);
  for (const char* text : {"0.5", "1", "", "none"}) {
    EXPECT_FALSE(kdeAppearance(std::string("[KDE]\nAnimationDurationFactor=") + text + "\n").isMotionReduced) << text;
  }
}

class KdeFileTest : public ::testing::Test {
 protected:
  void write(const char* window) const {
    testing::writeFile(file, std::string("[Colors:Window]\nBackgroundNormal=") + window + "\n");
  }
  bool becomes(Scheme wanted) {
    return testing::runLoopUntil([&] { return told.scheme == wanted; });
  }
  testing::TemporaryFolder folder;
  FileURL file = folder.file("kdeglobals");
  Appearance told;
};

TEST_F(KdeFileTest, IsFollowedWhenItIsWrittenReplacedOrMade) {
  const KdeAppearance following(file.displayPath(), [this](const Appearance& appearance) { told = appearance; });
  EXPECT_EQ(told.scheme, Scheme::unknown);
  write("32,35,38");
  EXPECT_TRUE(becomes(Scheme::dark)) << "made";
  write("239,240,241");
  EXPECT_TRUE(becomes(Scheme::light)) << "written in place";
  for (const auto& [window, scheme] : {std::pair("32,35,38", Scheme::dark), std::pair("239,240,241", Scheme::light)}) {
    const FileURL newer = folder.file("kdeglobals.new");
    testing::writeFile(newer, std::string("[Colors:Window]\nBackgroundNormal=") + window + "\n");
    std::filesystem::rename(newer.path(), file.path());
    EXPECT_TRUE(becomes(scheme)) << "replaced";
  }
}

TEST_F(KdeFileTest, IsToldAtOnceWhereItIsThere) {
  write("32,35,38");
  const KdeAppearance following(file.displayPath(), [this](const Appearance& appearance) { told = appearance; });
  EXPECT_EQ(told.scheme, Scheme::dark);
}

}  // namespace
}  // namespace quillmere
