#include "reading/FailedPictures.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class FailedPicturesTest : public ::testing::Test {
 protected:
  void fail(const FileURL& file, PictureError error = PictureError::damaged) {
    failed.keep(file, fileStatus(file), error);
  }
  testing::TemporaryFolder folder;
  const FileURL url = folder.file("a.png");
  FailedPictures failed;
};

TEST_F(FailedPicturesTest, AFileIsRememberedUntilItChanges) {
  testing::writeFile(url, "one");
  EXPECT_EQ(failed.find(url), std::nullopt);
  fail(url, PictureError::tooCostly);
  EXPECT_EQ(failed.find(url), PictureError::tooCostly);
  EXPECT_EQ(failed.find(folder.file("b.png")), std::nullopt);
  testing::writeFile(url, "other");
  EXPECT_EQ(failed.find(url), std::nullopt);
}

TEST_F(FailedPicturesTest, AnotherFileInItsPlaceIsRead) {
  testing::writeFile(url, "one");
  const Date date;
  testing::setModified(url, date);
  fail(url);
  const FileURL next = folder.file("next.png");
  testing::writeFile(next, "two");
  testing::setModified(next, date);
  std::filesystem::rename(next.path(), url.path());
  EXPECT_EQ(failed.find(url), std::nullopt);
}

TEST_F(FailedPicturesTest, WhatMayWorkAnotherTimeIsNotRemembered) {
  testing::writeFile(url, "one");
  fail(url, PictureError::unreadable);
  EXPECT_EQ(failed.find(url), std::nullopt);
  failed.keep(folder.file("gone.png"), std::nullopt, PictureError::damaged);
  EXPECT_EQ(failed.find(folder.file("gone.png")), std::nullopt);
}

TEST_F(FailedPicturesTest, TheLatestAreKept) {
  for (size_t i = 0; i <= FailedPictures::kMost; ++i) {
    const FileURL one = folder.file(std::to_string(i));
    testing::writeFile(one, "x");
    fail(one);
  }
  EXPECT_EQ(failed.find(folder.file("0")), std::nullopt);
  EXPECT_EQ(failed.find(folder.file("1")), PictureError::damaged);
}

}  // namespace
}  // namespace quillmere
