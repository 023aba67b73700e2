#include "support/CaptureFixture.h"

namespace quillmere {
namespace {

class CaptureEnvironmentTest : public testing::CaptureFixture {
 protected:
  void nameFolders(std::string_view list) const { configure("user-dirs.dirs", list); }
};

TEST_F(CaptureEnvironmentTest, TheLiveOneFollowsTheProcessEnvironment) {
  const std::string path = std::getenv("PATH");
  ::setenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME", 1);
  const CaptureEnvironment live = CaptureEnvironment::live();
  EXPECT_EQ(live.home.path(), std::getenv("HOME"));
  EXPECT_EQ(live.configHome.path(), std::getenv("XDG_CONFIG_HOME"));
  EXPECT_EQ(live.searchPath, path);
  EXPECT_EQ(live.currentDesktop, "ubuntu:GNOME");
  EXPECT_FALSE(live.dataFolders.empty());
  EXPECT_TRUE(live.isInstalled("sh"));
  ::unsetenv("XDG_CURRENT_DESKTOP");
  EXPECT_EQ(CaptureEnvironment::live().currentDesktop, "");
}

TEST_F(CaptureEnvironmentTest, WithoutItsVariableTheConfigurationIsInTheHome) {
  const std::string set = std::getenv("XDG_CONFIG_HOME");
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(CaptureEnvironment::live().configHome.path(), std::string(std::getenv("HOME")) + "/.config");
  ::setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(CaptureEnvironment::live().configHome.path(), std::string(std::getenv("HOME")) + "/.config");
  ::setenv("XDG_CONFIG_HOME", set.c_str(), 1);
}

TEST_F(CaptureEnvironmentTest, WithoutItsVariableTheHomeIsThatOfTheUser) {
  const std::string set = std::getenv("HOME");
  ::unsetenv("HOME");
  EXPECT_FALSE(CaptureEnvironment::live().home.isEmpty());
  ::setenv("HOME", set.c_str(), 1);
}

TEST_F(CaptureEnvironmentTest, InstalledIsAnExecutableFileOfTheSearchPath) {
  EXPECT_FALSE(environment.isInstalled("tool"));
  install("tool");
  EXPECT_TRUE(environment.isInstalled("tool"));
  testing::writeFile(folder.file("bin/text"), "");
  makeFolder("bin/folder");
  EXPECT_FALSE(environment.isInstalled("text"));
  EXPECT_FALSE(environment.isInstalled("folder"));
  environment.searchPath = "";
  EXPECT_FALSE(environment.isInstalled("tool"));
}

TEST_F(CaptureEnvironmentTest, ADesktopGoesByEachOfItsNamesInAnyLetterCase) {
  environment.currentDesktop = "ubuntu:GNOME";
  EXPECT_TRUE(environment.isDesktop("GNOME"));
  EXPECT_TRUE(environment.isDesktop("gnome"));
  EXPECT_FALSE(environment.isDesktop("GNO"));
  EXPECT_FALSE(environment.isDesktop("KDE"));
  environment.currentDesktop = "";
  EXPECT_FALSE(environment.isDesktop("GNOME"));
}

TEST_F(CaptureEnvironmentTest, AUserFolderIsBelowTheHomeOrAbsolute) {
  nameFolders("# c\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n  XDG_PICTURES_DIR=\"/data/my pictures/\"\n");
  EXPECT_EQ(environment.userFolder("DESKTOP"), home.appending("Schreibtisch"));
  EXPECT_EQ(environment.userFolder("PICTURES"), FileURL::fromPath("/data/my pictures"));
  EXPECT_EQ(environment.userFolder("MUSIC"), std::nullopt);
}

TEST_F(CaptureEnvironmentTest, AUserFolderThatIsNotWantedIsTheHome) {
  nameFolders("XDG_PICTURES_DIR=\"$HOME/\"\nXDG_DESKTOP_DIR=\"$HOME\"\n");
  EXPECT_EQ(environment.userFolder("PICTURES"), home);
  EXPECT_EQ(environment.userFolder("DESKTOP"), home);
}

TEST_F(CaptureEnvironmentTest, OtherFormsNameNoUserFolder) {
  nameFolders(
      "XDG_PICTURES_DIR=\"relative\"\nXDG_PICTURES_DIR=\"$HOMEWARD/x\"\nXDG_PICTURES_DIR=/bare\n"
      "XDG_PICTURES_DIR=\"\nXDG_PICTURES_DIR\n");
  EXPECT_EQ(environment.userFolder("PICTURES"), std::nullopt);
}

TEST_F(CaptureEnvironmentTest, AUserFolderMayHaveANameThatIsNoText) {
  nameFolders("XDG_PICTURES_DIR=\"$HOME/b\xe4r\"\n");
  EXPECT_EQ(environment.userFolder("PICTURES"), home.appending("b\xe4r"));
}

TEST_F(CaptureEnvironmentTest, WithoutAListNoUserFolderIsNamed) {
  EXPECT_EQ(environment.userFolder("PICTURES"), std::nullopt);
}

}  // namespace
}  // namespace quillmere
