#include "platform/linux/capture/LiveScreenshotLocationProvider.h"

#include "support/CaptureFixture.h"

namespace quillmere {
namespace {

class LiveScreenshotLocationProviderTest : public testing::CaptureFixture {
 protected:
  LiveScreenshotLocationProviderTest() { testing::useOwnSettingsStore(); }
  void configureSpectacle(const std::string& value) const {
    install("spectacle");
    describeSpectacle("24.02.0");
    configure("spectaclerc", "[ImageSave]\nimageSaveLocation=" + value + "\n");
  }
  LiveScreenshotLocationProvider provider() const { return LiveScreenshotLocationProvider(environment); }
};

TEST_F(LiveScreenshotLocationProviderTest, TheLiveEnvironmentCanBeAsked) {
  LiveScreenshotLocationProvider live;
  EXPECT_TRUE(live.folder()) << "the home at least";
}

TEST_F(LiveScreenshotLocationProviderTest, AFolderThatIsThereIsTheAnswer) {
  const FileURL shots = makeFolder("home/shots");
  for (const std::string& value : {shots.coded(), "file:" + shots.path(), shots.path() + "/", std::string("~/shots"),
                                   home.path() + "/other/../shots"}) {
    configureSpectacle(value);
    EXPECT_EQ(provider().folder(), shots) << value;
    EXPECT_EQ(provider().rawValue(), QString::fromStdString(value));
  }
  configureSpectacle("~");
  EXPECT_EQ(provider().folder(), home);
}

TEST_F(LiveScreenshotLocationProviderTest, AnythingElseMeansTheToolsDefault) {
  testing::writeFile(folder.file("home/file"), "");
  for (const std::string& value : {std::string(), std::string("relative"), std::string("\\n"), home.path() + "/gone",
                                   home.path() + "/file", std::string("file:///%")}) {
    configureSpectacle(value);
    EXPECT_EQ(provider().folder(), pictures) << value;
  }
}

TEST_F(LiveScreenshotLocationProviderTest, ToolsAndValuesAreLookedUpAtEveryCall) {
  LiveScreenshotLocationProvider lasting(environment);
  EXPECT_FALSE(lasting.canChange());
  configureSpectacle("~");
  EXPECT_TRUE(lasting.canChange());
  EXPECT_EQ(lasting.folder(), home);
  configure("spectaclerc", "[ImageSave]\nimageSaveLocation=~/Desktop\n");
  EXPECT_EQ(lasting.folder(), folder.file("home/Desktop"));
  std::filesystem::remove(folder.file("bin/spectacle").path());
  EXPECT_FALSE(lasting.canChange());
  EXPECT_EQ(lasting.rawValue(), std::nullopt);
}

TEST_F(LiveScreenshotLocationProviderTest, AChangeAndItsUndoLeaveTheFileAsItWas) {
  install("spectacle");
  for (const std::string before : {"# c\n[Save]\nx=1\n[ImageSave]\nimageSaveLocation[$e] = $HOME/Pictures\r\ny=\xff\n",
                                   "[ImageSave]\ny=1\n", "[ImageSave]\nimageSaveLocation=\n"}) {
    configure("spectaclerc", before);
    const auto previous = provider().rawValue();
    const FileURL shots = makeFolder("home/shots");
    EXPECT_TRUE(provider().tryToSetRawValue(provider().rawValueOf(shots)));
    EXPECT_EQ(provider().folder(), shots);
    EXPECT_TRUE(provider().tryToSetRawValue(previous));
    EXPECT_EQ(configuration("spectaclerc"), before);
    EXPECT_EQ(provider().rawValue(), previous);
  }
}

TEST_F(LiveScreenshotLocationProviderTest, AValueIsWrittenExactlyAsGiven) {
  configureSpectacle("~");
  for (const QString& value : {QStringLiteral("anything; \\x = \"%20\" ä"), QString()}) {
    EXPECT_TRUE(provider().tryToSetRawValue(value));
    EXPECT_EQ(provider().rawValue(), value);
  }
}

TEST_F(LiveScreenshotLocationProviderTest, AFolderWhoseNameIsNoTextIsReadAndWrittenWhereTheToolCanSaveThere) {
  const FileURL bytes = makeFolder("home/b\xe4r");
  install("xfce4-screenshooter");
  EXPECT_TRUE(provider().tryToSetRawValue(provider().rawValueOf(bytes)));
  EXPECT_EQ(provider().folder(), bytes);
}

TEST_F(LiveScreenshotLocationProviderTest, AFolderWhoseNameIsNoTextIsRefusedWhereTheToolWouldSaveElsewhere) {
  const FileURL bytes = makeFolder("home/b\xe4r");
  for (const char* program : {"ksnip", "flameshot", "spectacle"}) {
    install(program);
    EXPECT_FALSE(provider().tryToSetRawValue(provider().rawValueOf(bytes))) << program;
    EXPECT_EQ(provider().rawValue(), std::nullopt);
  }
}

TEST_F(LiveScreenshotLocationProviderTest, WhatCouldNotBePutBackIsNotChanged) {
  configureSpectacle("/b\xe4r");
  const std::string before = configuration("spectaclerc");
  EXPECT_FALSE(provider().canChange());
  EXPECT_FALSE(provider().tryToSetRawValue(QStringLiteral("/a")));
  EXPECT_EQ(configuration("spectaclerc"), before);
}

TEST_F(LiveScreenshotLocationProviderTest, ARefusedChangeLeavesTheConfiguration) {
  configureSpectacle("/a");
  const std::string before = configuration("spectaclerc");
  EXPECT_FALSE(provider().tryToSetRawValue(QStringLiteral("/a\nb=1")));
  EXPECT_FALSE(provider().tryToSetRawValue(QStringLiteral(" /a")));
  EXPECT_FALSE(provider().tryToSetRawValue(QString(QChar(u'\0'))));
  EXPECT_EQ(configuration("spectaclerc"), before);
}

TEST_F(LiveScreenshotLocationProviderTest, WithoutAToolEveryChangeIsRefused) {
  EXPECT_FALSE(provider().tryToSetRawValue(QStringLiteral("/a")));
  EXPECT_FALSE(provider().tryToSetRawValue(std::nullopt));
}

}  // namespace
}  // namespace quillmere
