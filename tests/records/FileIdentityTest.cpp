#include "records/FileIdentity.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

FileIdentity complete(double creationDate = 700000000.0) {
  return {"volume", 42, Date{creationDate}, 1234};
}

TEST(FileIdentity, WithVolumeCreationDateAndSizeIsComplete) {
  EXPECT_TRUE(complete().isComplete());
}

TEST(FileIdentity, WithoutAnyOneOfTheThreeIsNotComplete) {
  FileIdentity withoutVolume = complete();
  withoutVolume.volume.reset();
  FileIdentity withoutDate = complete();
  withoutDate.creationDate.reset();
  FileIdentity withoutSize = complete();
  withoutSize.size.reset();
  EXPECT_FALSE(withoutVolume.isComplete());
  EXPECT_FALSE(withoutDate.isComplete());
  EXPECT_FALSE(withoutSize.isComplete());
}

TEST(FileIdentity, OfOneFileMatchesItself) {
  EXPECT_TRUE(complete().isSameFile(complete()));
}

TEST(FileIdentity, EqualFieldByFieldButWithoutAFieldDoesNotMatch) {
  for (const int missing : {0, 1, 2}) {
    FileIdentity identity = complete();
    if (missing == 0) identity.size.reset();
    if (missing == 1) identity.volume.reset();
    if (missing == 2) identity.creationDate.reset();
    EXPECT_EQ(identity, FileIdentity(identity));
    EXPECT_FALSE(identity.isSameFile(identity));
    EXPECT_FALSE(identity.isSameFile(complete()));
    EXPECT_FALSE(complete().isSameFile(identity));
  }
}

TEST(FileIdentity, OfAnotherVolumeNumberOrSizeDoesNotMatch) {
  FileIdentity otherVolume = complete();
  otherVolume.volume = "other";
  FileIdentity otherFile = complete();
  otherFile.file = 43;
  FileIdentity otherSize = complete();
  otherSize.size = 1235;
  EXPECT_FALSE(complete().isSameFile(otherVolume));
  EXPECT_FALSE(complete().isSameFile(otherFile));
  EXPECT_FALSE(complete().isSameFile(otherSize));
}

TEST(FileIdentity, MatchesWhileCreationDatesDifferByLessThanAThousandth) {
  for (const double start : {0.0, 1000.0, 700000000.0, 788000000.123}) {
    EXPECT_TRUE(complete(start).isSameFile(complete(start + 0.0009))) << start;
    EXPECT_TRUE(complete(start + 0.0009).isSameFile(complete(start))) << start;
    EXPECT_FALSE(complete(start).isSameFile(complete(start + 0.001))) << start;
    EXPECT_FALSE(complete(start + 0.001).isSameFile(complete(start))) << start;
    EXPECT_FALSE(complete(start).isSameFile(complete(start + 1))) << start;
  }
}

TEST(FileIdentity, IsEqualOnlyInAllFourFields) {
  FileIdentity other = complete();
  EXPECT_EQ(other, complete());
  other.creationDate = Date{700000000.0005};
  EXPECT_NE(other, complete());
}

}  // namespace
}  // namespace quillmere
