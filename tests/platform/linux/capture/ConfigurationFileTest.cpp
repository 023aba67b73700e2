#include "platform/linux/capture/ConfigurationFile.h"

#include <sys/mount.h>

#include "foundation/FileStatus.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::becomeOrdinaryUser;
using testing::exitCodeOfChild;
using testing::kCannotSetUp;
using testing::namesIn;
using testing::readBytes;
using testing::TemporaryFolder;
using testing::writeFile;

const ConfigurationKey kKey{"Save", "folder"};

class ConfigurationFileTest : public ::testing::Test {
 protected:
  /// Whether an ordinary user's attempt is refused; what was there is compared by the caller.
  bool isRefusedForAnOrdinaryUser() const {
    const int code = exitCodeOfChild([this] {
      if (!becomeOrdinaryUser()) return kCannotSetUp;
      return configuration.setValue(kKey, "/new") ? 1 : 0;
    });
    return code == 0;
  }
  static mode_t modeOf(const FileURL& url) {
    struct stat status {};
    EXPECT_EQ(::stat(url.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  TemporaryFolder folder;
  FileURL file = folder.file("toolrc");
  ConfigurationFile configuration{file};
};

TEST_F(ConfigurationFileTest, WithoutAFileItsTextIsEmpty) {
  EXPECT_FALSE(configuration.exists());
  EXPECT_EQ(configuration.text(), "");
}

TEST_F(ConfigurationFileTest, WhatIsNoFileHasNoText) {
  std::filesystem::create_directory(file.path());
  EXPECT_EQ(configuration.text(), std::nullopt);
  EXPECT_FALSE(configuration.setValue(kKey, "/new"));
}

TEST_F(ConfigurationFileTest, OnlyTheValueChanges) {
  writeFile(file, "# c\n[Save]\nfolder=/a\nx=\xff\n");
  EXPECT_TRUE(configuration.setValue(kKey, "/new"));
  EXPECT_EQ(readBytes(file), "# c\n[Save]\nfolder=/new\nx=\xff\n");
  EXPECT_TRUE(configuration.setValue(kKey, std::nullopt));
  EXPECT_EQ(readBytes(file), "# c\n[Save]\nx=\xff\n");
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"toolrc"}) << "nothing is left beside it";
}

TEST_F(ConfigurationFileTest, AFileIsMadeWithItsFolders) {
  const FileURL deep = folder.file("a/b/toolrc");
  EXPECT_TRUE(ConfigurationFile(deep).setValue(kKey, "/new"));
  EXPECT_EQ(readBytes(deep), "[Save]\nfolder=/new\n");
}

TEST_F(ConfigurationFileTest, RemovingFromNoFileMakesNone) {
  EXPECT_TRUE(configuration.setValue(kKey, std::nullopt));
  EXPECT_FALSE(configuration.exists());
}

TEST_F(ConfigurationFileTest, TheModeIsKept) {
  for (const mode_t mode : {0600, 0644, 0660}) {
    writeFile(file, "");
    ASSERT_EQ(::chmod(file.c_str(), mode), 0);
    EXPECT_TRUE(configuration.setValue(kKey, "/" + std::to_string(mode)));
    EXPECT_EQ(modeOf(file), mode);
  }
}

TEST_F(ConfigurationFileTest, ALinkStaysOneAndItsTargetIsWritten) {
  const FileURL target = folder.file("dotfiles");
  writeFile(target, "[Save]\nfolder=/a\n");
  ASSERT_EQ(::symlink("dotfiles", file.c_str()), 0);
  EXPECT_TRUE(configuration.setValue(kKey, "/new"));
  EXPECT_EQ(fileStatus(file)->kind, FileStatus::Kind::symbolicLink);
  EXPECT_EQ(readBytes(target), "[Save]\nfolder=/new\n");
}

TEST_F(ConfigurationFileTest, ALinkToNowhereIsLeftAlone) {
  ASSERT_EQ(::symlink("away", file.c_str()), 0);
  EXPECT_FALSE(configuration.setValue(kKey, "/new"));
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"toolrc"});
  EXPECT_EQ(fileStatus(file)->kind, FileStatus::Kind::symbolicLink);
}

TEST_F(ConfigurationFileTest, AReaderSeesTheOldFileOrTheNewOne) {
  writeFile(file, "[Save]\nfolder=/a\n");
  const int open = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_TRUE(configuration.setValue(kKey, "/new"));
  std::string old(64, '\0');
  old.resize(static_cast<size_t>(std::max<ssize_t>(0, ::read(open, old.data(), old.size()))));
  ::close(open);
  EXPECT_EQ(old, "[Save]\nfolder=/a\n");
}

TEST_F(ConfigurationFileTest, AValueThatWouldReadAsAnotherIsRefused) {
  for (const char* value : {" /a", "/a ", "/a\nb=1", "/a\r"}) {
    writeFile(file, "[Save]\nfolder=/old\n");
    EXPECT_FALSE(configuration.setValue(kKey, value)) << value;
    EXPECT_EQ(readBytes(file), "[Save]\nfolder=/old\n");
  }
}

TEST_F(ConfigurationFileTest, AFolderThatCannotBeWrittenRefuses) {
  writeFile(file, "[Save]\nfolder=/a\n");
  ASSERT_EQ(::chmod(file.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.url().c_str(), 0555), 0);
  EXPECT_TRUE(isRefusedForAnOrdinaryUser());
  ASSERT_EQ(::chmod(folder.url().c_str(), 0755), 0);
  EXPECT_EQ(readBytes(file), "[Save]\nfolder=/a\n");
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"toolrc"});
}

TEST_F(ConfigurationFileTest, AReadOnlyFileRefusesEvenInAFolderThatCanBeWritten) {
  writeFile(file, "[Save]\nfolder=/a\n");
  ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.url().c_str(), 0777), 0);
  EXPECT_TRUE(isRefusedForAnOrdinaryUser());
  EXPECT_EQ(readBytes(file), "[Save]\nfolder=/a\n");
}

TEST_F(ConfigurationFileTest, AFileThatCannotBeReadIsNotReplaced) {
  writeFile(file, "[Save]\nfolder=/a\n");
  ASSERT_EQ(::chmod(file.c_str(), 0200), 0);
  ASSERT_EQ(::chown(file.c_str(), 65534, 65534), ::geteuid() == 0 ? 0 : -1);
  ASSERT_EQ(::chmod(folder.url().c_str(), 0777), 0);
  EXPECT_TRUE(isRefusedForAnOrdinaryUser());
  EXPECT_EQ(::chmod(file.c_str(), 0600), 0);
  EXPECT_EQ(readBytes(file), "[Save]\nfolder=/a\n");
}

TEST_F(ConfigurationFileTest, AFullDiskRefusesAndLeavesTheOldFile) {
  const FileURL disk = folder.file("disk");
  std::filesystem::create_directory(disk.path());
  const int code = exitCodeOfChild([&] {
    if (!testing::mountSmallDisk(disk.path(), "64k")) return kCannotSetUp;
    const FileURL small = disk.appending("toolrc");
    const std::string old = "[Save]\nfolder=/a\n";
    if (!ConfigurationFile(small).setValue(kKey, "/a")) return kCannotSetUp;
    const int filler = ::open(disk.appending("filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string block(4096, 'x');
    while (::write(filler, block.data(), block.size()) > 0) {
    }
    ::close(filler);
    if (ConfigurationFile(small).setValue(kKey, "/new")) return 1;
    if (readFile(small) != old) return 2;
    return namesIn(disk).size() == 2 ? 0 : 3;
  });
  if (code == kCannotSetUp) GTEST_SKIP() << "no private mounts here";
  EXPECT_EQ(code, 0);
}

TEST_F(ConfigurationFileTest, AnAttemptThatFailsLeavesNoNewFolder) {
  const FileURL disk = folder.file("disk");
  std::filesystem::create_directory(disk.path());
  const int code = exitCodeOfChild([&] {
    // Room for two more entries, the file system's own folder apart: the folder fits, the file does not.
    if (!testing::mountSmallDisk(disk.path(), "64k,nr_inodes=2")) return kCannotSetUp;
    if (ConfigurationFile(disk.appending("tool/toolrc")).setValue(kKey, "/new")) return 1;
    return namesIn(disk).empty() ? 0 : 2;
  });
  if (code == kCannotSetUp) GTEST_SKIP() << "no private mounts here";
  EXPECT_EQ(code, 0);
}

TEST_F(ConfigurationFileTest, AnImmutableFileRefuses) {
  writeFile(file, "[Save]\nfolder=/a\n");
  if (std::system(("chattr +i '" + file.path() + "' 2>/dev/null").c_str()) != 0) {
    GTEST_SKIP() << "files cannot be made immutable here";
  }
  EXPECT_FALSE(configuration.setValue(kKey, "/new"));
  EXPECT_EQ(std::system(("chattr -i '" + file.path() + "'").c_str()), 0);
  EXPECT_EQ(readBytes(file), "[Save]\nfolder=/a\n");
  EXPECT_EQ(namesIn(folder.url()), std::vector<std::string>{"toolrc"});
}

}  // namespace
}  // namespace quillmere
