#include "platform/linux/capture/CaptureTools.h"

#include "support/CaptureFixture.h"

namespace quillmere {
namespace {

class CaptureToolsTest : public testing::CaptureFixture {
 protected:
  CaptureToolsTest() { testing::useOwnSettingsStore(); }
  ~CaptureToolsTest() override {
    for (const auto& key : {gnomeKey, mateKey}) key.write(std::nullopt);
  }
  std::unique_ptr<CaptureTool> tool() const { return captureToolInUse(environment); }
  std::optional<FileURL> savedTo() const { return tool()->folder(); }
  /// Which of the tools it is shows in how it writes a folder and in whether it can be changed at all.
  std::string notation() const { return tool()->rawValueOf(FileURL::fromPath("/a b,c")).toStdString(); }

  static constexpr const char* kSpectacle = "file:///a%20b,c/";
  static constexpr const char* kFlameshot = "\"/a b,c\"";
  static constexpr const char* kFixed = "/a b,c";
  const SettingsKey gnomeKey{"org.gnome.gnome-screenshot", "auto-save-directory"};
  const SettingsKey mateKey{"org.mate.screenshot", "last-save-directory"};
  FileURL shots = makeFolder("home/My shöts");
};

// --- which one is in use ---

TEST_F(CaptureToolsTest, WithoutAToolTheGeneralDefaultCountsAndNothingCanBeChanged) {
  EXPECT_FALSE(tool()->canChange());
  EXPECT_EQ(tool()->rawValue(), std::nullopt);
  EXPECT_EQ(savedTo(), pictures);
  const FileURL screenshots = makeFolder("home/Pictures/Screenshots");
  EXPECT_EQ(savedTo(), screenshots);
}

TEST_F(CaptureToolsTest, WithoutAnyFolderThereIsNone) {
  environment.home = folder.file("gone");
  EXPECT_EQ(savedTo(), std::nullopt);
}

TEST_F(CaptureToolsTest, TheDesktopsOwnToolIsUsedWhenItIsInstalled) {
  install("flameshot");
  install("spectacle");
  configure("flameshot/flameshot.ini", "[General]\nsavePath=/a\n");
  environment.currentDesktop = "KDE";
  EXPECT_EQ(notation(), kSpectacle);
  std::filesystem::remove(folder.file("bin/spectacle").path());
  EXPECT_EQ(notation(), kFlameshot);
}

TEST_F(CaptureToolsTest, OnXfceAndMateTheirOwnToolsAreUsed) {
  for (const char* program : {"spectacle", "xfce4-screenshooter", "mate-screenshot"}) install(program);
  configure("xfce4/xfce4-screenshooter", "screenshot_dir=file:" + shots.path() + "\n");
  environment.currentDesktop = "XFCE";
  EXPECT_EQ(savedTo(), shots);
  environment.currentDesktop = "MATE";
  EXPECT_EQ(savedTo(), folder.file("home/Desktop"));
}

TEST_F(CaptureToolsTest, OnAnotherDesktopTheFirstThatIsConfiguredIsUsed) {
  for (const char* program : {"spectacle", "flameshot", "ksnip"}) install(program);
  environment.currentDesktop = "X-Cinnamon";
  EXPECT_EQ(notation(), kSpectacle) << "of those that nobody configured the first";
  configure("ksnip/ksnip.conf", "[Application]\nSaveDirectory=" + shots.path() + "\n");
  EXPECT_EQ(savedTo(), shots);
  configure("flameshot/flameshot.ini", "");
  EXPECT_EQ(savedTo(), pictures);
}

TEST_F(CaptureToolsTest, AToolWithSettingsInTheStoreIsConfiguredOnceOneIsSet) {
  install("spectacle");
  install("gnome-screenshot");
  EXPECT_EQ(notation(), kSpectacle);
  ASSERT_TRUE(gnomeKey.write(shots.path()));
  EXPECT_EQ(savedTo(), shots);
}

TEST_F(CaptureToolsTest, WhatIsConfiguredButNotInstalledIsNotUsed) {
  configure("flameshot/flameshot.ini", "[General]\nsavePath=" + shots.path() + "\n");
  EXPECT_EQ(savedTo(), pictures);
}

// --- GNOME Shell ---

TEST_F(CaptureToolsTest, TheShellSavesToItsFixedFolderWhateverIsInstalled) {
  install("gnome-screenshot");
  configure("user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Pictures\"\n");
  ASSERT_TRUE(gnomeKey.write(shots.path()));
  const FileURL screenshots = makeFolder("home/Pictures/Bildschirmfotos");
  for (const char* desktop : {"GNOME", "ubuntu:GNOME", "GNOME-Classic:GNOME"}) {
    environment.currentDesktop = desktop;
    EXPECT_EQ(savedTo(), screenshots);
    EXPECT_FALSE(tool()->canChange());
    EXPECT_EQ(tool()->rawValue(), std::nullopt);
    EXPECT_EQ(notation(), kFixed);
    EXPECT_FALSE(tool()->tryToSetRawValue(QStringLiteral("/a")));
  }
}

TEST_F(CaptureToolsTest, WithoutAPicturesFolderTheShellSavesInTheHome) {
  environment.currentDesktop = "GNOME";
  const FileURL screenshots = makeFolder("home/Screenshots");
  EXPECT_EQ(savedTo(), screenshots);
}

TEST_F(CaptureToolsTest, DesktopsBuiltOnGnomeHaveAnotherShell) {
  install("flameshot");
  for (const char* desktop : {"Budgie:GNOME", "GNOME-Flashback:GNOME", "Unity:Unity7:GNOME"}) {
    environment.currentDesktop = desktop;
    EXPECT_EQ(notation(), kFlameshot) << desktop;
  }
}

// --- Spectacle ---

TEST_F(CaptureToolsTest, SpectacleChangedItsKeyAndTellsItsVersion) {
  install("spectacle");
  configure("spectaclerc", "[Save]\ndefaultSaveLocation=" + pictures.coded() +
                               "\n\n[ImageSave]\nimageSaveLocation=" + shots.coded() + "\n");
  for (const char* former : {"22.12.3", "23.08.5", "24.01.90"}) {
    describeSpectacle(former);
    EXPECT_EQ(savedTo(), pictures) << former;
  }
  for (const char* current : {"24.02.0", "24.12.1", "25.04.0"}) {
    describeSpectacle(current);
    EXPECT_EQ(savedTo(), shots) << current;
  }
}

TEST_F(CaptureToolsTest, ASpectacleOfUnknownVersionUsesTheKeyThatIsSet) {
  install("spectacle");
  const std::string former = "[Save]\ndefaultSaveLocation=" + pictures.coded() + "\n";
  configure("spectaclerc", former);
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(shots)));
  EXPECT_EQ(configuration("spectaclerc"), "[Save]\ndefaultSaveLocation=" + shots.coded() + "/\n");
  configure("spectaclerc", "");
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(shots)));
  EXPECT_EQ(configuration("spectaclerc"), "[ImageSave]\nimageSaveLocation=" + shots.coded() + "/\n");
  describeSpectacle("no number");
  EXPECT_EQ(savedTo(), shots);
}

TEST_F(CaptureToolsTest, SpectaclesDefaultBecameAFolderOfItsOwn) {
  install("spectacle");
  const FileURL screenshots = makeFolder("home/Pictures/Screenshots");
  describeSpectacle("22.12.3");
  EXPECT_EQ(savedTo(), pictures);
  describeSpectacle("24.02.0");
  EXPECT_EQ(savedTo(), screenshots);
}

TEST_F(CaptureToolsTest, SpectacleExpandsVariablesWhereItsKeySaysSo) {
  install("spectacle");
  configure("spectaclerc", "[ImageSave]\nimageSaveLocation[$e]=$HOME/My shöts\n");
  EXPECT_EQ(savedTo(), shots);
  EXPECT_EQ(tool()->rawValue(), QStringLiteral("$HOME/My shöts"));
  configure("spectaclerc", "[ImageSave]\nimageSaveLocation=$HOME/My shöts\n");
  EXPECT_EQ(savedTo(), pictures);
}

TEST_F(CaptureToolsTest, NoNameLooksLikeAVariableToSpectacle) {
  install("spectacle");
  configure("spectaclerc", "[ImageSave]\nimageSaveLocation[$e]=\n");
  const FileURL dollar = makeFolder("home/$HOME $$");
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(dollar)));
  EXPECT_EQ(savedTo(), dollar);
}

// --- Flameshot and ksnip ---

TEST_F(CaptureToolsTest, FlameshotKeepsAPathWithTheEscapesOfItsLibrary) {
  install("flameshot");
  configure("flameshot/flameshot.ini", "[General]\ndrawColor=#ff0000\n\n[Shortcuts]\nTYPE_COPY=Ctrl+C\n");
  const FileURL hard = makeFolder("home/a, \"b\" \\ 100% ä1");
  EXPECT_EQ(savedTo(), pictures);
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(hard)));
  EXPECT_EQ(configuration("flameshot/flameshot.ini"),
            "[General]\nsavePath=\"" + home.path() +
                "/a, \\\"b\\\" \\\\ 100% \\xe4\\x31\"\ndrawColor=#ff0000\n\n[Shortcuts]\nTYPE_COPY=Ctrl+C\n");
  EXPECT_EQ(savedTo(), hard);
}

TEST_F(CaptureToolsTest, KsnipSavesInTheHomeByDefault) {
  install("ksnip");
  EXPECT_EQ(savedTo(), home);
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(shots)));
  EXPECT_EQ(savedTo(), shots);
  EXPECT_EQ(configuration("ksnip/ksnip.conf"), "[Application]\nSaveDirectory=" + home.path() + "/My sh\\xf6ts\n");
}

// --- Xfce ---

TEST_F(CaptureToolsTest, XfceKeepsAURLWithOneSlashOrThree) {
  install("xfce4-screenshooter");
  configure("xfce4/xfce4-screenshooter", "app=none\nscreenshot_dir=file:" + shots.path() + "\naction=1\n");
  EXPECT_EQ(savedTo(), shots);
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(pictures)));
  EXPECT_EQ(configuration("xfce4/xfce4-screenshooter"),
            "app=none\nscreenshot_dir=" + pictures.coded() + "\naction=1\n");
  EXPECT_EQ(savedTo(), pictures);
}

TEST_F(CaptureToolsTest, XfceMayRememberAnImageInsteadOfItsFolder) {
  install("xfce4-screenshooter");
  testing::writeFile(shots.appending("a.png"), "");
  configure("xfce4/xfce4-screenshooter", "screenshot_dir=" + shots.appending("a.png").coded() + "\n");
  EXPECT_EQ(savedTo(), shots);
}

TEST_F(CaptureToolsTest, XfceWritesNamesThatAreNoTextWithoutEscapes) {
  install("xfce4-screenshooter");
  const FileURL bytes = makeFolder("home/b\xe4r ä");
  configure("xfce4/xfce4-screenshooter", "screenshot_dir=file:" + bytes.path() + "\n");
  EXPECT_EQ(savedTo(), bytes);
  const auto previous = tool()->rawValue();
  EXPECT_EQ(previous, QString::fromStdString("file:" + home.path() + "/b%E4r %C3%A4"));
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(shots)));
  EXPECT_EQ(savedTo(), shots);
  EXPECT_TRUE(tool()->tryToSetRawValue(previous));
  EXPECT_EQ(savedTo(), bytes);
}

TEST_F(CaptureToolsTest, XfceAndGnomeSaveInTheHomeUnlessAPicturesFolderIsNamed) {
  install("xfce4-screenshooter");
  EXPECT_EQ(savedTo(), home);
  configure("user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Pictures\"\n");
  EXPECT_EQ(savedTo(), pictures);
  std::filesystem::remove(pictures.path());
  EXPECT_EQ(savedTo(), home);
}

// --- gnome-screenshot and mate-screenshot ---

TEST_F(CaptureToolsTest, GnomeScreenshotKeepsAURLInTheStore) {
  install("gnome-screenshot");
  EXPECT_EQ(tool()->rawValue(), std::nullopt);
  EXPECT_EQ(savedTo(), home);
  EXPECT_TRUE(tool()->canChange());
  EXPECT_TRUE(tool()->tryToSetRawValue(tool()->rawValueOf(shots)));
  EXPECT_EQ(tool()->rawValue(), QString::fromStdString(shots.coded()));
  EXPECT_EQ(savedTo(), shots);
  EXPECT_TRUE(tool()->tryToSetRawValue(QStringLiteral("~/Pictures")));
  EXPECT_EQ(savedTo(), pictures);
  EXPECT_TRUE(tool()->tryToSetRawValue(QString()));
  EXPECT_EQ(savedTo(), home);
  EXPECT_TRUE(tool()->tryToSetRawValue(std::nullopt));
  EXPECT_EQ(tool()->rawValue(), std::nullopt);
}

TEST_F(CaptureToolsTest, MateScreenshotTellsItsLastFolderButRewritesItItself) {
  install("mate-screenshot");
  EXPECT_EQ(savedTo(), folder.file("home/Desktop"));
  ASSERT_TRUE(mateKey.write(shots.coded()));
  EXPECT_EQ(savedTo(), shots);
  EXPECT_EQ(tool()->rawValue(), QString::fromStdString(shots.coded()));
  EXPECT_FALSE(tool()->canChange());
  std::filesystem::remove(folder.file("home/Desktop").path());
  ASSERT_TRUE(mateKey.write(std::nullopt));
  EXPECT_EQ(savedTo(), home);
}

}  // namespace
}  // namespace quillmere
