#include "model/FileStamp.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class FileStampTest : public ::testing::Test {
 protected:
  FileStamp stamp() const {
    return fileStamp(file, [this](const FileURL&) { return identity; });
  }

  TemporaryFolder folder;
  const FileURL file = folder.file("shot.png");
  std::optional<FileIdentity> identity = FileIdentity{"volume", 7, {}, 4};
};

TEST_F(FileStampTest, AFileThatNobodyTouchesKeepsItsStamp) {
  writeFile(file, "bytes");
  EXPECT_EQ(stamp(), stamp());
}

TEST_F(FileStampTest, AFileThatIsWrittenInPlaceGetsAnother) {
  writeFile(file, "bytes");
  const FileStamp before = stamp();
  setModified(file, before.modified + 1);
  EXPECT_NE(stamp(), before);
}

TEST_F(FileStampTest, AnotherFileOfTheSameDateHasAnother) {
  writeFile(file, "bytes");
  const FileStamp before = stamp();
  identity->file = 8;
  EXPECT_NE(stamp(), before);
}

TEST_F(FileStampTest, AFileThatIsGoneHasAStampOfItsOwn) {
  writeFile(file, "bytes");
  const FileStamp before = stamp();
  std::filesystem::remove(file.path());
  identity.reset();
  EXPECT_EQ(stamp(), FileStamp());
  EXPECT_NE(stamp(), before);
}

}  // namespace
}  // namespace quillmere::testing
