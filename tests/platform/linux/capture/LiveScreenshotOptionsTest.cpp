#include "platform/linux/capture/LiveScreenshotOptions.h"

#include "foundation/ManualExecutor.h"
#include "support/CaptureFixture.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class LiveScreenshotOptionsTest : public testing::CaptureFixture {
 protected:
  LiveScreenshotOptionsTest() { testing::useOwnSettingsStore(); }
  LiveScreenshotOptions options() { return LiveScreenshotOptions(executor, environment); }
  /// A tool that writes down what it is started with.
  void installWriter(std::string_view program) const {
    install(program);
    testing::writeFile(folder.file("bin").appending(program), "#!/bin/sh\nprintf '%s ' \"${0##*/}\" \"$@\" > '" +
                                                                  started.path() + ".part'\nmv '" + started.path() +
                                                                  ".part' '" + started.path() + "'\n");
  }
  /// What was started, by its words.
  std::string open() {
    options().open();
    executor.drain();
    EXPECT_TRUE(testing::runLoopUntil([this] { return std::filesystem::exists(started.path()); }));
    const std::string words = testing::readBytes(started);
    std::filesystem::remove(started.path());
    return words;
  }

  const FileURL started = folder.file("started");
  ManualExecutor executor;
};

TEST_F(LiveScreenshotOptionsTest, EachToolIsAskedInItsOwnWords) {
  for (const auto& [program, words] : {std::pair("flameshot", "flameshot config "),
                                       {"spectacle", "spectacle --launchonly "},
                                       {"gnome-screenshot", "gnome-screenshot --interactive "},
                                       {"xfce4-screenshooter", "xfce4-screenshooter "},
                                       {"ksnip", "ksnip "},
                                       {"mate-screenshot", "mate-screenshot --interactive "}}) {
    installWriter(program);
    EXPECT_TRUE(options().canOpen());
    EXPECT_EQ(open(), words);
    std::filesystem::remove(folder.file("bin").appending(program).path());
  }
}

TEST_F(LiveScreenshotOptionsTest, TheToolInUseIsTheOneThatIsAsked) {
  installWriter("flameshot");
  installWriter("xfce4-screenshooter");
  environment.currentDesktop = "XFCE";
  EXPECT_EQ(open(), "xfce4-screenshooter ");
}

TEST_F(LiveScreenshotOptionsTest, WithoutAToolThereIsNothingToOpen) {
  EXPECT_FALSE(options().canOpen());
  options().open();
  executor.drain();
}

TEST_F(LiveScreenshotOptionsTest, GnomesOwnShellHasNoWindowForThem) {
  install("gnome-screenshot");
  environment.currentDesktop = "GNOME";
  EXPECT_FALSE(options().canOpen());
}

TEST_F(LiveScreenshotOptionsTest, ToolsAreLookedForInTheBackground) {
  installWriter("flameshot");
  executor.holdBackground();
  options().open();
  EXPECT_EQ(executor.heldBackground(), 1u);
  EXPECT_FALSE(std::filesystem::exists(started.path()));
  executor.runHeldBackground();
  EXPECT_TRUE(testing::runLoopUntil([this] { return std::filesystem::exists(started.path()); }));
}

}  // namespace
}  // namespace quillmere
