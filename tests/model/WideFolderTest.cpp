#include "model/WideFolder.h"

#include <gtest/gtest.h>
#include <filesystem>

#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class WideFolderTest : public ::testing::Test {
 protected:
  WideFolderTest() { std::filesystem::create_directories(home.appending("Pictures").path()); }
  std::optional<WideFolder> of(const FileURL& folder) const { return wideFolder(folder, home); }

  testing::TemporaryFolder disk;
  const FileURL home = disk.file("home/p");
};

TEST_F(WideFolderTest, HomeAndRootAreWideAndNothingElse) {
  EXPECT_EQ(of(home), WideFolder::home);
  EXPECT_EQ(of(FileURL::fromPath("/")), WideFolder::root);
  EXPECT_EQ(of(home.appending("Pictures")), std::nullopt);
  EXPECT_EQ(of(home.parent()), std::nullopt);
  EXPECT_EQ(of(FileURL::fromPath("/media/p/Disk")), std::nullopt) << "the top of another disk";
}

TEST_F(WideFolderTest, ByAnyOtherNameToo) {
  const FileURL link = disk.file("link");
  std::filesystem::create_directory_symlink(home.path(), link.path());
  EXPECT_EQ(of(link), WideFolder::home);
  EXPECT_EQ(of(FileURL::fromPath(home.path() + "/")), WideFolder::home);
  EXPECT_EQ(of(home.appending("Pictures").appending("..")), WideFolder::home);
}

TEST_F(WideFolderTest, WithoutAHomeOnlyTheRootIs) {
  EXPECT_EQ(wideFolder(disk.url(), {}), std::nullopt);
  EXPECT_EQ(wideFolder(FileURL::fromPath("/"), FileURL::fromPath("/")), WideFolder::root);
}

}  // namespace
}  // namespace quillmere
