#include "model/ScreenshotFolderMatch.h"

#include <gtest/gtest.h>
#include <filesystem>

#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using Kind = ScreenshotFolderMatch::Kind;

class ScreenshotFolderMatchTest : public ::testing::Test {
 protected:
  TemporaryFolder home;
  const FileURL shots = home.file("Shots");
  const FileURL other = home.file("other");
};

TEST_F(ScreenshotFolderMatchTest, WithoutEitherFolderNothingCanBeSaid) {
  EXPECT_EQ(ScreenshotFolderMatch::of(std::nullopt, shots).kind, Kind::unknown);
  EXPECT_EQ(ScreenshotFolderMatch::of(shots, std::nullopt).kind, Kind::unknown);
}

TEST_F(ScreenshotFolderMatchTest, AnotherFolderIsNamed) {
  EXPECT_EQ(ScreenshotFolderMatch::of(shots, other), (ScreenshotFolderMatch{Kind::differs, other}));
}

TEST_F(ScreenshotFolderMatchTest, SpellingAndLinksMakeNoOtherFolder) {
  std::filesystem::create_directory(shots.path());
  const FileURL link = home.file("link");
  std::filesystem::create_symlink(shots.path(), link.path());
  for (const FileURL& same : {shots, home.file("shots"), link, shots.appending("..").appending("Shots")}) {
    EXPECT_EQ(ScreenshotFolderMatch::of(shots, same).kind, Kind::matches) << same.path();
  }
}

}  // namespace
}  // namespace quillmere::testing
