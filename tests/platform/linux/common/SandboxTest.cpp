#include "platform/linux/common/Sandbox.h"

#include <gtest/gtest.h>
#include <fstream>

#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class SandboxTest : public ::testing::Test {
 protected:
  SandboxTest() { leave(); }
  ~SandboxTest() override { leave(); }
  static void leave() {
    qunsetenv("SNAP");
    qunsetenv("container");
  }
  bool isInside() const { return isSandboxed(mark.displayPath()); }

  testing::TemporaryFolder folder;
  const FileURL mark = folder.file(".flatpak-info");
};

TEST_F(SandboxTest, IsAFlatpakByItsMark) {
  EXPECT_FALSE(isInside());
  std::ofstream(mark.path()) << "[Application]\n";
  EXPECT_TRUE(isInside());
}

TEST_F(SandboxTest, IsASnapByItsName) {
  qputenv("SNAP", "/snap/quillmere/1");
  EXPECT_TRUE(isInside());
}

TEST_F(SandboxTest, IsNoContainerOfADeveloper) {
  qputenv("container", "podman");
  EXPECT_FALSE(isInside());
}

}  // namespace
}  // namespace quillmere
