#include "platform/linux/reading/BadPictures.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

BadPictures::File file(uint64_t inode, int64_t size = 100) {
  struct stat status {};
  status.st_ino = inode;
  status.st_size = size;
  return BadPictures::fileOf(status);
}

TEST(BadPictures, AreThoseThatWereNotedTwice) {
  BadPictures pictures;
  EXPECT_FALSE(pictures.isBad(file(1)));
  pictures.note(file(1));
  EXPECT_FALSE(pictures.isBad(file(1)));
  pictures.note(file(1));
  EXPECT_TRUE(pictures.isBad(file(1)));
  EXPECT_FALSE(pictures.isBad(file(2)));
}

TEST(BadPictures, AreOthersWhenTheyChange) {
  BadPictures pictures;
  pictures.note(file(1, 100));
  pictures.note(file(1, 100));
  EXPECT_FALSE(pictures.isBad(file(1, 101)));
}

TEST(BadPictures, AreForgottenWhenThereAreVeryMany) {
  BadPictures pictures;
  for (int i = 0; i < 2; ++i) pictures.note(file(1));
  for (uint64_t other = 2; other < 1026; ++other) pictures.note(file(other));
  EXPECT_FALSE(pictures.isBad(file(1)));
}

}  // namespace
}  // namespace quillmere
