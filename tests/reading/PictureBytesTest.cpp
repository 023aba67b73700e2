#include "reading/PictureBytes.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

TEST(PictureBytes, AreThoseOfAFileAndOfNothingElse) {
  const TemporaryFolder folder;
  const FileURL file = folder.file("a.png");
  writeFile(file, "bytes");
  const FileURL link = folder.file("link.png");
  std::filesystem::create_symlink(file.path(), link.path());
  EXPECT_EQ(pictureBytes(file), "bytes");
  EXPECT_EQ(pictureBytes(link), std::nullopt);
  EXPECT_EQ(pictureBytes(folder.url()), std::nullopt);
}

TEST(PictureBytes, AreNoneOfAFileThatIsLargerThanAnyPicture) {
  const TemporaryFolder folder;
  const FileURL file = folder.file("a.png");
  writeFile(file, "");
  std::filesystem::resize_file(file.path(), (uint64_t{1} << 30) + 1);
  EXPECT_EQ(pictureBytes(file), std::nullopt);
}

}  // namespace
}  // namespace quillmere::testing
