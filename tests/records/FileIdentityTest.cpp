#include "records/FileIdentity.h"

#include <gtest/gtest.h>
#include <functional>

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

FileIdentity withoutBirthTime() {
  return {"volume", 42, std::nullopt, 1234, Date{5}};
}

TEST(FileIdentity, CompleteOnesMatchOrAreDifferent) {
  FileIdentity resized = complete();
  resized.size = 1;
  EXPECT_EQ(complete().match(complete()), FileIdentity::Match::same);
  EXPECT_EQ(complete().match(resized), FileIdentity::Match::different);
}

TEST(FileIdentity, WithoutBirthTimesOnlyWhatIsAllTheSameMatches) {
  using Match = FileIdentity::Match;
  EXPECT_EQ(withoutBirthTime().match(withoutBirthTime()), Match::same);
  const std::function<void(FileIdentity&)> changes[] = {
      [](FileIdentity& identity) { identity.volume = "other"; },
      [](FileIdentity& identity) { identity.volume.reset(); },
      [](FileIdentity& identity) { ++identity.file; },
      [](FileIdentity& identity) { identity.size = 1; },
      [](FileIdentity& identity) { identity.size.reset(); },
      [](FileIdentity& identity) { identity.modificationDate = Date{5.000001}; },
      [](FileIdentity& identity) { identity.modificationDate.reset(); },
      [](FileIdentity& identity) { identity.creationDate = Date{1}; },
  };
  for (const auto& change : changes) {
    FileIdentity now = withoutBirthTime();
    change(now);
    EXPECT_EQ(withoutBirthTime().match(now), Match::unknown);
    EXPECT_EQ(now.match(withoutBirthTime()), Match::unknown);
  }
  FileIdentity nothing;
  EXPECT_EQ(nothing.match(nothing), Match::unknown);
}

TEST(FileIdentity, ADeviceNumberThatChangesSaysNothing) {
  EXPECT_TRUE(isStableVolume("1b0c6a3e-0000-4000-8000-000000000000"));
  EXPECT_TRUE(isStableVolume("1234-ABCD"));
  EXPECT_FALSE(isStableVolume("0:45"));
  EXPECT_TRUE(canBeSameVolume("0:45", "0:52"));
  EXPECT_FALSE(canBeSameVolume("0:45", "1234-ABCD"));
  EXPECT_FALSE(canBeSameVolume("1234-ABCD", "1234-ABCE"));
  FileIdentity before = complete(), after = complete();
  before.volume = "0:45";
  after.volume = "0:52";
  EXPECT_TRUE(before.isSameFile(after)) << "remounted";
  after.volume = "1234-ABCD";
  EXPECT_FALSE(before.isSameFile(after));
}

}  // namespace
}  // namespace quillmere
