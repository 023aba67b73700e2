#include "platform/linux/login/InstalledProgram.h"

#include "platform/linux/login/LoginFixture.h"

namespace quillmere {
namespace {

class InstalledProgramTest : public testing::LoginFixture {};

TEST_F(InstalledProgramTest, ThatOfALauncherEntryIsInstalled) {
  install();
  EXPECT_EQ(installedProgram(programs), program);
}

TEST_F(InstalledProgramTest, AnEntryMayNameItWithoutItsFolder) {
  install();
  makeLauncher("quillmere --show inbox");
  EXPECT_EQ(installedProgram(programs), program);
}

TEST_F(InstalledProgramTest, ALinkIsThePlaceThatStays) {
  programs.running = makeProgram("store/12345/quillmere");
  const std::string link = home.file("usr/bin/quillmere").path();
  std::filesystem::create_symlink(programs.running, link);
  makeLauncher(link);
  EXPECT_EQ(installedProgram(programs), link);
}

TEST_F(InstalledProgramTest, OneOfABuildFolderIsNot) {
  programs.running = makeProgram("build/quillmere");
  EXPECT_FALSE(installedProgram(programs)) << "no entry";
  makeProgram("usr/bin/quillmere");
  makeLauncher(home.file("usr/bin/quillmere").path());
  EXPECT_FALSE(installedProgram(programs)) << "the entry starts another copy";
}

TEST_F(InstalledProgramTest, TheFirstEntryThatStartsItCounts) {
  install();
  makeLauncher("/gone/quillmere", "own/applications");
  EXPECT_EQ(installedProgram(programs), program);
}

TEST_F(InstalledProgramTest, OneWhoseFileIsGoneIsNotUnlessAnotherTookItsPlace) {
  install();
  programs.running += " (deleted)";
  EXPECT_EQ(installedProgram(programs), program) << "updated while it runs";
  std::filesystem::remove(program);
  EXPECT_FALSE(installedProgram(programs));
}

TEST_F(InstalledProgramTest, OnlyFilesThatCanBeStartedAreStarted) {
  const std::string text = home.file("usr/bin/text").path();
  write(home.file("usr/bin/text"), "text");
  EXPECT_FALSE(startable(text, programs));
  EXPECT_FALSE(startable("text", programs));
  EXPECT_FALSE(startable(home.file("usr/bin").path(), programs)) << "a folder";
  EXPECT_FALSE(startable("", programs));
  const std::string made = makeProgram("usr/bin/made");
  EXPECT_EQ(startable("made", programs), made);
  EXPECT_EQ(startable(made, programs), made);
}

TEST_F(InstalledProgramTest, TheseTestsAreNotInstalled) {
  const ProgramPlaces live = ProgramPlaces::live();
  EXPECT_TRUE(std::filesystem::exists(live.running));
  EXPECT_FALSE(live.launchers.empty());
  EXPECT_FALSE(live.searched.empty());
  EXPECT_FALSE(installedProgram(live));
}

}  // namespace
}  // namespace quillmere
