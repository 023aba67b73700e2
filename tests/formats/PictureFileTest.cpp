#include "formats/PictureFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class PictureFileTest : public ::testing::Test {
 protected:
  FileURL write(std::string_view bytes) {
    const FileURL url = folder.file("a.png");
    testing::writeFile(url, bytes);
    return url;
  }
  testing::TemporaryFolder folder;
};

TEST_F(PictureFileTest, GivesAnyPartAndAll) {
  const PictureFile file(write("0123456789"));
  ASSERT_TRUE(file.isOpen());
  EXPECT_EQ(file.size(), 10);
  EXPECT_EQ(file.bytes(2, 3), "234");
  EXPECT_EQ(file.bytes(8, 100), "89");
  EXPECT_EQ(file.bytes(20, 5), "");
  EXPECT_EQ(file.all().value(), "0123456789");
}

TEST_F(PictureFileTest, WhatSomebodyHasOpenStaysOpen) {
  const int descriptor = ::open(write("0123456789").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::lseek(descriptor, 4, SEEK_SET), 4);
  { EXPECT_EQ(PictureFile(descriptor).all().value(), "0123456789") << "wherever others have read to"; }
  EXPECT_EQ(::lseek(descriptor, 0, SEEK_CUR), 4);
  EXPECT_EQ(::close(descriptor), 0);
  EXPECT_FALSE(PictureFile(-1).isOpen());
}

TEST_F(PictureFileTest, OnlyRegularFilesAreOpened) {
  EXPECT_FALSE(PictureFile(folder.url()).isOpen());
  EXPECT_FALSE(PictureFile(folder.file("missing")).isOpen());
  ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(PictureFile(folder.file("pipe")).isOpen());
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(write("x").c_str(), link.c_str()), 0);
  EXPECT_FALSE(PictureFile(link).isOpen());
}

TEST_F(PictureFileTest, WhatWasCutSinceIsUnreadable) {
  const FileURL url = write("0123456789");
  const PictureFile file(url);
  ASSERT_EQ(::truncate(url.c_str(), 4), 0);
  ASSERT_FALSE(file.all());
  EXPECT_EQ(file.all().reason(), PictureError::unreadable);
}

TEST_F(PictureFileTest, MostlyHolesIsWhatIsLargeAndHardlyWritten) {
  const FileURL url = write("beginning");
  ASSERT_EQ(::truncate(url.c_str(), 1 << 20), 0);
  EXPECT_FALSE(PictureFile(url).isMostlyHoles()) << "soon read";
  ASSERT_EQ(::truncate(url.c_str(), 64 << 20), 0);
  EXPECT_TRUE(PictureFile(url).isMostlyHoles());
  EXPECT_FALSE(PictureFile(write(std::string(8 << 20, '\0'))).isMostlyHoles()) << "zeros that were written";
}

}  // namespace
}  // namespace quillmere
