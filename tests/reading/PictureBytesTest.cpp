#include "reading/PictureBytes.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

TEST(PictureBytes, AreThoseOfAFileAndOfNothingElse) {
  const TemporaryFolder folder;
  const FileURL file = writtenFile(folder.file("a.png"), "bytes");
  const FileURL link = folder.file("link.png");
  std::filesystem::create_symlink(file.path(), link.path());
  EXPECT_EQ(pictureBytes(file), "bytes");
  EXPECT_EQ(pictureBytes(link), std::nullopt);
  EXPECT_EQ(pictureBytes(folder.url()), std::nullopt);
}

TEST(PictureBytes, AreNoneOfAFileThatIsLargerThanAnyPicture) {
  const TemporaryFolder folder;
  const FileURL file = writtenFile(folder.file("a.png"), "");
  std::filesystem::resize_file(file.path(), (uint64_t{1} << 30) + 1);
  EXPECT_EQ(pictureBytes(file), std::nullopt);
}

}  // namespace
}  // namespace quillmere::testing
