#include "update/library/PackageFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <filesystem>

#include "foundation/FileStatus.h"
#include "support/TemporaryFolder.h"
#include "update/library/Maker.h"

namespace quillmere {
namespace {

class PackageFileTest : public ::testing::Test {
 protected:
  std::shared_ptr<PackageFile> make() const {
    return PackageFile::make(parent, QStringLiteral("quillmere-0.2.0.deb"),
                             {maker.check(), maker.sign(package), package.size()});
  }
  static unsigned permissions(const FileURL& place) {
    struct stat status {};
    ::stat(place.c_str(), &status);
    return status.st_mode & 07777U;
  }

  testing::Maker maker;
  const QByteArray package = "the package";
  testing::TemporaryFolder folder;
  FileURL parent = folder.file("a/b");
};

TEST_F(PackageFileTest, NobodyElseGetsAtIt) {
  const auto file = make();
  ASSERT_TRUE(file);
  EXPECT_EQ(permissions(file->place().parent()), 0700U);
  EXPECT_EQ(permissions(file->place()), 0600U);
  EXPECT_EQ(file->place().lastPathComponent(), "quillmere-0.2.0.deb");
}

TEST_F(PackageFileTest, IsGenuineOnceAllOfItCame) {
  const auto file = make();
  EXPECT_TRUE(file->append("the "));
  EXPECT_FALSE(file->isWholeAndGenuine());
  EXPECT_TRUE(file->append("package"));
  EXPECT_TRUE(file->isWholeAndGenuine());
}

TEST_F(PackageFileTest, GoesWithItsFolder) {
  auto file = make();
  file->append(package);
  const FileURL own = file->place().parent();
  file.reset();
  EXPECT_TRUE(isAbsent(own));
  EXPECT_TRUE(fileExists(parent));
}

TEST_F(PackageFileTest, AnotherFileAtItsNameIsNotIt) {
  const auto file = make();
  file->append(package);
  ASSERT_EQ(::unlink(file->place().c_str()), 0);
  std::filesystem::copy_file("/etc/passwd", file->place().path());
  EXPECT_FALSE(file->isAtItsPlace());
  EXPECT_FALSE(file->isWholeAndGenuine());
}

TEST_F(PackageFileTest, WithoutAPlaceThereIsNone) {
  std::filesystem::create_directories(folder.file("a").path());
  ASSERT_EQ(::symlink("/dev/null/none", parent.c_str()), 0);
  EXPECT_FALSE(make());
}

TEST_F(PackageFileTest, WhatWasLeftBehindIsRemovedAndNothingElse) {
  std::filesystem::create_directories(parent.appending("update-old").path());
  std::filesystem::copy_file("/etc/passwd", parent.appending("update-old/quillmere-0.1.5.deb").path());
  std::filesystem::create_directories(parent.appending("mine").path());
  std::filesystem::create_directory_symlink(parent.appending("mine").path(), parent.appending("update-link").path());
  PackageFile::removeLeftovers(parent);
  EXPECT_TRUE(isAbsent(parent.appending("update-old")));
  EXPECT_TRUE(fileExists(parent.appending("mine")));
  EXPECT_TRUE(fileExists(parent.appending("update-link")));
  PackageFile::removeLeftovers(folder.file("none"));
}

TEST(PackageName, HasTheSuffixThatTellsTheKindAndNothingElseOfTheAddress) {
  EXPECT_EQ(packageName(QStringLiteral("/a/../../x.deb"), QStringLiteral("1.0.0")),
            QStringLiteral("quillmere-1.0.0.deb"));
  EXPECT_EQ(packageName(QStringLiteral("/x.AppImage"), QStringLiteral("1.0.0")),
            QStringLiteral("quillmere-1.0.0.AppImage"));
  EXPECT_EQ(packageName(QStringLiteral("/x.desktop"), QStringLiteral("1.0.0")), QStringLiteral("quillmere-1.0.0"));
}

}  // namespace
}  // namespace quillmere
