#include "update/library/PackageSeal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/TemporaryFolder.h"
#include "update/library/Maker.h"

namespace quillmere {
namespace {

class PackageSealTest : public ::testing::Test {
 protected:
  ~PackageSealTest() override { ::close(descriptor); }
  PackageSeal sealOf(const QByteArray& package) const { return {maker.check(), maker.sign(package), package.size()}; }
  void write(const QByteArray& bytes) const {
    ASSERT_EQ(::pwrite(descriptor, bytes.constData(), static_cast<size_t>(bytes.size()), 0), bytes.size());
  }

  testing::Maker maker;
  testing::TemporaryFolder folder;
  int descriptor = ::open(folder.file("package").c_str(), O_RDWR | O_CREAT, 0600);
};

TEST_F(PackageSealTest, IsUnbrokenForExactlyThePackage) {
  const QByteArray package(70000, 'p');
  write(package);
  EXPECT_TRUE(sealOf(package).isUnbroken(descriptor));
  QByteArray other = package;
  other[35000] = static_cast<char>(other[35000] ^ 1);
  write(other);
  EXPECT_FALSE(sealOf(package).isUnbroken(descriptor));
}

TEST_F(PackageSealTest, AnotherSizeIsAnotherPackage) {
  const QByteArray package("package");
  write(package + "more");
  EXPECT_FALSE(sealOf(package).isUnbroken(descriptor));
  ASSERT_EQ(::ftruncate(descriptor, 3), 0);
  EXPECT_FALSE(sealOf(package).isUnbroken(descriptor));
  EXPECT_FALSE(sealOf(QByteArray()).isUnbroken(descriptor));
}

TEST_F(PackageSealTest, OnlyAFileHasOne) {
  const int opened = ::open(folder.path().c_str(), O_RDONLY);
  EXPECT_FALSE(sealOf("package").isUnbroken(opened));
  ::close(opened);
  EXPECT_FALSE(sealOf("package").isUnbroken(-1));
}

/// What counts is the open file, whatever is put at its name meanwhile.
TEST_F(PackageSealTest, LooksAtTheOpenFile) {
  const QByteArray package("package");
  write(package);
  ASSERT_EQ(::unlink(folder.file("package").c_str()), 0);
  ASSERT_EQ(::symlink("/etc/passwd", folder.file("package").c_str()), 0);
  EXPECT_TRUE(sealOf(package).isUnbroken(descriptor));
}

}  // namespace
}  // namespace quillmere
