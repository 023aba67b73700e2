#include "update/library/SingleFileInstaller.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>

#include "foundation/FileStatus.h"
#include "foundation/ManualExecutor.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"
#include "update/library/Maker.h"

namespace quillmere {
namespace {

class SingleFileInstallerTest : public ::testing::Test {
 protected:
  SingleFileInstallerTest() {
    std::filesystem::create_directory(folder.file("apps").path());
    std::ofstream(program.path()) << "the old program";
    ::chmod(program.c_str(), 0750);
    file->append(package);
  }
  std::shared_ptr<PackageFile> packageOf(const QByteArray& signedBytes) const {
    return PackageFile::make(folder.file("cache"), QStringLiteral("quillmere"),
                             {maker.check(), maker.sign(signedBytes), signedBytes.size()});
  }
  std::string content() const { return readFile(program).value_or("(none)"); }
  /// The program and nothing beside it.
  size_t files() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(program.parent().path()), {}));
  }
  void expectUnchanged(std::optional<UpdateFailure> failure, UpdateFailure expected) const {
    EXPECT_EQ(failure, expected);
    EXPECT_EQ(content(), "the old program");
    EXPECT_EQ(files(), 1U);
  }

  testing::Maker maker;
  testing::TemporaryFolder folder;
  FileURL program = folder.file("apps/Quillmere.AppImage");
  const QByteArray package = "the new program";
  std::shared_ptr<PackageFile> file = packageOf(package);
};

TEST_F(SingleFileInstallerTest, TheNewOneTakesNameAndPermissions) {
  EXPECT_EQ(SingleFileInstaller::replace(program, *file), std::nullopt);
  EXPECT_EQ(content(), "the new program");
  EXPECT_EQ(files(), 1U);
  struct stat status {};
  ASSERT_EQ(::stat(program.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0750U);
}

TEST_F(SingleFileInstallerTest, NothingThatRunsAsSomeoneElseComesOfIt) {
  ::chmod(program.c_str(), 06755);
  EXPECT_EQ(SingleFileInstaller::replace(program, *file), std::nullopt);
  struct stat status {};
  ASSERT_EQ(::stat(program.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0755U);
}

TEST_F(SingleFileInstallerTest, WhatIsNotTheMakersReplacesNothing) {
  const auto other = packageOf("the new program");
  other->append("the bad program");
  expectUnchanged(SingleFileInstaller::replace(program, *other), UpdateFailure::packageNotSigned);
}

TEST_F(SingleFileInstallerTest, APackageThatIsTooShortReplacesNothing) {
  const auto other = packageOf("the new program");
  other->append("the new");
  expectUnchanged(SingleFileInstaller::replace(program, *other), UpdateFailure::notStored);
}

TEST_F(SingleFileInstallerTest, ALinkIsNotReplaced) {
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(program.c_str(), link.c_str()), 0);
  expectUnchanged(SingleFileInstaller::replace(link, *file), UpdateFailure::notSingleFile);
  expectUnchanged(SingleFileInstaller::replace(folder.file("none"), *file), UpdateFailure::notSingleFile);
}

TEST_F(SingleFileInstallerTest, WhatARunThatWasCutOffLeftBesideItIsInNobodysWay) {
  std::ofstream(program.path() + ".updating") << "half";
  EXPECT_EQ(SingleFileInstaller::replace(program, *file), std::nullopt);
  EXPECT_EQ(files(), 1U);
}

TEST_F(SingleFileInstallerTest, AFolderThatRefusesIsSeenBeforehandAndLeavesTheProgram) {
  ::chmod(folder.path().c_str(), 0755);
  const int code = testing::exitCodeOfChild([this] {
    if (!testing::becomeOrdinaryUser()) return testing::kCannotSetUp;
    ManualExecutor executor;
    const bool isSeen = SingleFileInstaller(executor, program).obstacle() == UpdateFailure::notReplaceable;
    const bool isRefused = SingleFileInstaller::replace(program, *file) == UpdateFailure::notReplaceable;
    return isSeen && isRefused ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  expectUnchanged(UpdateFailure::notReplaceable, UpdateFailure::notReplaceable);
}

TEST_F(SingleFileInstallerTest, AFullDiskLeavesTheProgram) {
  const int code = testing::exitCodeOfChild([this] {
    const FileURL disk = folder.file("disk");
    ::mkdir(disk.c_str(), 0700);
    if (!testing::mountSmallDisk(disk.path(), "64k")) return testing::kCannotSetUp;
    const FileURL there = disk.appending("Quillmere.AppImage");
    std::ofstream(there.path()) << "the old program";
    const QByteArray large(200000, 'n');
    const auto big = packageOf(large);
    big->append(large);
    const bool isRefused = SingleFileInstaller::replace(there, *big) == UpdateFailure::notStored;
    const bool isThere = readFile(there) == "the old program";
    const bool isAlone = isAbsent(FileURL::fromPath(there.path() + ".updating"));
    return isRefused && isThere && isAlone ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
}

TEST_F(SingleFileInstallerTest, AFileThatIsAMountOfItsOwnIsNotReplaceable) {
  const int code = testing::exitCodeOfChild([this] {
    const FileURL disk = folder.file("disk");
    ::mkdir(disk.c_str(), 0700);
    if (!testing::mountSmallDisk(disk.path(), "64k")) return testing::kCannotSetUp;
    std::ofstream(disk.appending("other").path()) << "the old program";
    if (::mount(disk.appending("other").c_str(), program.c_str(), nullptr, MS_BIND, nullptr) != 0)
      return testing::kCannotSetUp;
    const bool isRefused = SingleFileInstaller::replace(program, *file) == UpdateFailure::notReplaceable;
    return isRefused && readFile(program) == "the old program" ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(files(), 1U);
}

TEST_F(SingleFileInstallerTest, ItIsDoneInTheBackgroundAndTold) {
  ManualExecutor executor;
  SingleFileInstaller installer(executor, program);
  EXPECT_EQ(installer.obstacle(), std::nullopt);
  EXPECT_EQ(installer.programToStart(), program);
  std::optional<std::optional<UpdateFailure>> told;
  installer.install(file, [&](auto failure) { told = failure; });
  EXPECT_FALSE(told);
  executor.drain();
  ASSERT_TRUE(told);
  EXPECT_EQ(*told, std::nullopt);
  EXPECT_EQ(content(), "the new program");
}

TEST_F(SingleFileInstallerTest, OnlyABundleThatThisProgramRunsFromIsASingleFile) {
  const FileURL running = FileURL::fromPath("/tmp/.mount_x/usr/bin/quillmere");
  const QByteArray bundle = QByteArray::fromStdString(program.path());
  EXPECT_EQ(singleFileOf(running, bundle, "/tmp/.mount_x"), program);
  EXPECT_TRUE(singleFileOf(running, bundle, "").isEmpty());
  EXPECT_TRUE(singleFileOf(running, bundle, "/tmp/.mount").isEmpty());
  EXPECT_TRUE(singleFileOf(running, "", "/tmp/.mount_x").isEmpty());
  EXPECT_TRUE(singleFileOf(running, "Quillmere.AppImage", "/tmp/.mount_x").isEmpty());
  ::chmod(program.c_str(), 0640);
  EXPECT_TRUE(singleFileOf(running, bundle, "/tmp/.mount_x").isEmpty());
}

TEST_F(SingleFileInstallerTest, AProgramThatIsNoSingleFileIsInTheWay) {
  ManualExecutor executor;
  EXPECT_EQ(SingleFileInstaller(executor, FileURL()).obstacle(), UpdateFailure::notSingleFile);
}

}  // namespace
}  // namespace quillmere
