#include "update/TrustedPlace.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "update/Installation.h"

namespace quillmere {
namespace {

class TrustedPlaceTest : public ::testing::Test {
 protected:
  TrustedPlaceTest() { installation.configure("{}"); }
  bool isSafe() const { return isAsSafeAsTheProgram(installation.configuration(), installation.program()); }
  testing::Installation installation;
};

TEST_F(TrustedPlaceTest, AFileBesideTheProgramIsAsSafeAsIt) {
  EXPECT_TRUE(isSafe());
}

TEST_F(TrustedPlaceTest, WhatOthersCanWriteToIsNot) {
  for (const mode_t others : {S_IWGRP, S_IWOTH}) {
    ::chmod(installation.configuration().c_str(), 0644 | others);
    EXPECT_FALSE(isSafe());
    ::chmod(installation.configuration().c_str(), 0644);
    ::chmod(installation.file("share").c_str(), 0755 | others);
    EXPECT_FALSE(isSafe());
    ::chmod(installation.file("share").c_str(), 0755);
  }
  EXPECT_TRUE(isSafe());
}

TEST_F(TrustedPlaceTest, AFolderWhereOnlyOwnersRemoveIsAsGoodAsItsEntries) {
  ::chmod(installation.file("share").c_str(), 01777);
  EXPECT_TRUE(isSafe());
}

TEST_F(TrustedPlaceTest, WhatBelongsToAnotherPersonIsNot) {
  ASSERT_EQ(::geteuid(), 0U) << "only root can give files away";
  constexpr uid_t kSomeone = 1234;
  ASSERT_EQ(::chown(installation.configuration().c_str(), kSomeone, 0), 0);
  EXPECT_FALSE(isSafe());
  ASSERT_EQ(::chown(installation.program().c_str(), kSomeone, 0), 0);
  EXPECT_TRUE(isSafe());  // who owns the program owns what it does
}

TEST_F(TrustedPlaceTest, LinksAndWhatIsNotThereAreNot) {
  const FileURL link = installation.file("share/quillmere/link");
  ASSERT_EQ(::symlink(installation.configuration().c_str(), link.c_str()), 0);
  EXPECT_FALSE(isAsSafeAsTheProgram(link, installation.program()));
  ASSERT_EQ(::symlink(installation.file("share").c_str(), installation.file("other").c_str()), 0);
  EXPECT_FALSE(isAsSafeAsTheProgram(installation.file("other/quillmere/update.json"), installation.program()));
  EXPECT_FALSE(isAsSafeAsTheProgram(installation.file("none"), installation.program()));
  EXPECT_FALSE(isAsSafeAsTheProgram(installation.configuration(), installation.file("none")));
}

}  // namespace
}  // namespace quillmere
