#include "platform/linux/capture/CaptureFolders.h"

#include "support/CaptureFixture.h"

namespace quillmere {
namespace {

using CaptureFolders::firstExisting;
using CaptureFolders::holding;
using CaptureFolders::named;

class CaptureFoldersTest : public testing::CaptureFixture {
 protected:
  static std::optional<FileURL> at(const char* path) { return FileURL::fromPath(path); }
  std::optional<FileURL> of(const std::string& value) const { return named(value, home); }
};

TEST_F(CaptureFoldersTest, APathIsTakenAsItIs) {
  EXPECT_EQ(of("/a b/100%/%20"), at("/a b/100%/%20"));
  EXPECT_EQ(of("/b\xe4r"), at("/b\xe4r"));
}

TEST_F(CaptureFoldersTest, AURLIsDecodedWithOneSlashOrThree) {
  EXPECT_EQ(of("file:///a%20b/%C3%A4%25"), at("/a b/ä%"));
  EXPECT_EQ(of("file:/a%20b"), at("/a b"));
  EXPECT_EQ(of("file://localhost/a"), at("/a"));
  EXPECT_EQ(of("file:/b%E4r"), at("/b\xe4r"));
  EXPECT_EQ(of("file:/a b/ä"), at("/a b/ä")) << "some tools leave out the escapes";
}

TEST_F(CaptureFoldersTest, ATildeIsTheHome) {
  EXPECT_EQ(of("~"), home);
  EXPECT_EQ(of("~/a/b"), home.appending("a/b"));
  EXPECT_EQ(of("~/"), home);
}

TEST_F(CaptureFoldersTest, ThePathIsStandardised) {
  EXPECT_EQ(of("/a//b/./../c/"), at("/a/c"));
  EXPECT_EQ(of("file:///a/b/"), at("/a/b"));
  EXPECT_EQ(of("/"), at("/"));
}

TEST_F(CaptureFoldersTest, EmptyMeansNone) {
  for (const char* value : {"", " ", "\n", " \t\r\n "}) EXPECT_EQ(of(value), std::nullopt);
}

TEST_F(CaptureFoldersTest, WhatIsNotAbsoluteMeansNone) {
  for (const char* value :
       {"a/b", "./a", "~user/a", "http://host/a", "file:a", "file://host/a", "file:///a%2", " /a"}) {
    EXPECT_EQ(of(value), std::nullopt) << value;
  }
  EXPECT_EQ(of("file:///a%00b"), std::nullopt);
}

TEST_F(CaptureFoldersTest, AFolderHoldsItself) {
  EXPECT_EQ(holding(pictures), pictures);
}

TEST_F(CaptureFoldersTest, AnImageIsHeldByItsFolderEvenWhenItIsGone) {
  testing::writeFile(pictures.appending("a"), "");
  EXPECT_EQ(holding(pictures.appending("a")), pictures);
  EXPECT_EQ(holding(pictures.appending("gone.png")), pictures);
}

TEST_F(CaptureFoldersTest, AFolderThatIsGoneIsHeldByNone) {
  EXPECT_EQ(holding(pictures.appending("gone")), std::nullopt);
  EXPECT_EQ(holding(pictures.appending("gone/a.png")), std::nullopt);
}

TEST_F(CaptureFoldersTest, ALinkToAFolderIsAFolder) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(pictures.c_str(), link.c_str()), 0);
  EXPECT_TRUE(CaptureFolders::isFolder(link));
  testing::writeFile(folder.file("file"), "");
  EXPECT_FALSE(CaptureFolders::isFolder(folder.file("file")));
}

TEST_F(CaptureFoldersTest, TheFirstFolderThatIsThereIsTaken) {
  EXPECT_EQ(firstExisting({folder.file("gone"), pictures, home}), pictures);
  EXPECT_EQ(firstExisting({folder.file("gone")}), std::nullopt);
}

TEST_F(CaptureFoldersTest, WithoutAListThePicturesAreTheHomeForOneToolkitAndAFolderForTheOther) {
  EXPECT_EQ(CaptureFolders::homePictures(environment), (std::vector{home, home}));
  EXPECT_EQ(CaptureFolders::pictures(environment), (std::vector{pictures, home}));
}

TEST_F(CaptureFoldersTest, WithAListBothTakeItsFolder) {
  configure("user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
  const std::vector expected{home.appending("Bilder"), home};
  EXPECT_EQ(CaptureFolders::homePictures(environment), expected);
  EXPECT_EQ(CaptureFolders::pictures(environment), expected);
}

TEST_F(CaptureFoldersTest, TheFolderForScreenshotsIsFoundUnderItsTranslatedName) {
  const auto candidates = CaptureFolders::withScreenshots({pictures, home});
  EXPECT_EQ(candidates.front(), pictures.appending("Screenshots"));
  EXPECT_EQ(firstExisting(candidates), pictures) << "before there is any";
  makeFolder("home/Pictures/Captures d’écran");
  EXPECT_EQ(firstExisting(candidates), pictures.appending("Captures d’écran"));
  makeFolder("home/Pictures/Screenshots");
  EXPECT_EQ(firstExisting(candidates), pictures.appending("Screenshots"));
}

}  // namespace
}  // namespace quillmere
