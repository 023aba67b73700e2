#include "platform/linux/sharing/LiveSharing.h"

#include <algorithm>
#include <cstdlib>

#include "foundation/ManualExecutor.h"
#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::readBytes;
using testing::runLoopUntil;
using testing::TemporaryFolder;
using testing::writeFile;

const QString kPng = QStringLiteral("image/png");
const QString kViewer = QStringLiteral("quillmere-test-viewer.desktop");
const QString kMail = QStringLiteral("email");

/// The applications of this desktop and one of the test's own, a command that writes down what it was given.
class LiveSharingTest : public ::testing::Test {
 protected:
  LiveSharingTest() {
    const FileURL command = folder.file("viewer");
    writeScript(command);
    const FileURL applications = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("applications");
    std::filesystem::create_directories(applications.path());
    writeFile(applications.appending(kViewer.toStdString()),
              "[Desktop Entry]\nType=Application\nName=Test Viewer\nIcon=viewer-icon\nMimeType=image/png;\nExec=\"" +
                  command.path() + "\" --open %f\n");
    writeFile(FileURL::fromPath(std::getenv("XDG_CONFIG_HOME")).appending("mimeapps.list"),
              "[Added Associations]\nimage/png=" + kViewer.toStdString() +
                  ";\n[Default Applications]\nimage/png=" + kViewer.toStdString() + ";\n");
    ::setenv("PATH", (folder.path() + ":/usr/bin:/bin").c_str(), 1);
  }
  ~LiveSharingTest() override { ::setenv("PATH", path.c_str(), 1); }

  void writeScript(const FileURL& place) const {
    writeFile(place, "#!/bin/sh\nprintf '%s\\n--\\n' \"$@\" > '" + folder.path() + "/writing'\nmv '" + folder.path() +
                         "/writing' '" + written.path() + "'\n");
    std::filesystem::permissions(place.path(), std::filesystem::perms::owner_all);
  }
  std::vector<ShareTarget> targets(const QString& type) {
    const auto asking = sharing.targets(type);
    executor.drain();
    return asking.await_resume();
  }
  bool share(const FileURL& file, const QString& target) {
    const auto opening = sharing.share({file, kPng}, target);
    executor.drain();
    return opening.await_resume();
  }
  FileURL picture(const std::string& name) {
    const FileURL url = folder.file(name);
    writeFile(url, "picture");
    return url;
  }
  static std::string lines(const std::vector<std::string>& words) {
    std::string all;
    for (const std::string& word : words) all += word + "\n--\n";
    return all;
  }

  TemporaryFolder folder;
  FileURL written = folder.file("written");
  std::string path = std::getenv("PATH");
  ManualExecutor executor;
  UserDefaults defaults{folder.file("settings.json").displayPath()};
  LiveSharing sharing{executor, defaults};
};

TEST_F(LiveSharingTest, OffersTheApplicationsForSuchPicturesTheDesktopsChoiceFirst) {
  ASSERT_TRUE(runLoopUntil([this] {
    const auto offered = targets(kPng);
    return std::any_of(offered.begin(), offered.end(), [](const ShareTarget& target) { return target.id == kViewer; });
  }));
  auto offered = targets(kPng);
  std::erase_if(offered, [](const ShareTarget& target) { return target.id == kMail; });
  EXPECT_EQ(offered.front().id, kViewer);
  EXPECT_EQ(offered.front().name, QStringLiteral("Test Viewer"));
  EXPECT_EQ(offered.front().icon, QStringLiteral("viewer-icon"));
  EXPECT_EQ(offered.front().group, ShareTarget::Group::program);
  for (const ShareTarget& target : targets(QStringLiteral("image/x-of-no-application"))) EXPECT_EQ(target.id, kMail);
}

TEST_F(LiveSharingTest, AsksAndOpensInTheBackground) {
  const auto asking = sharing.targets(kPng);
  EXPECT_FALSE(asking.isDone());
  const auto opening = sharing.share({picture("shot.png"), kPng}, kViewer);
  EXPECT_FALSE(opening.isDone());
  executor.drain();
  EXPECT_TRUE(asking.isDone());
  EXPECT_TRUE(opening.isDone());
}

TEST_F(LiveSharingTest, ATargetThatIsGoneTakesNothing) {
  EXPECT_FALSE(share(picture("shot.png"), QStringLiteral("quillmere-no-such.desktop")));
}

TEST_F(LiveSharingTest, AFileThatIsGoneIsGivenToNobody) {
  writeScript(folder.file("xdg-email"));
  const FileURL gone = folder.file("gone.png");
  EXPECT_FALSE(share(gone, kViewer));
  EXPECT_FALSE(share(gone, kMail));
  EXPECT_FALSE(std::filesystem::exists(written.path()));
}

TEST_F(LiveSharingTest, OffersMailWhereThereIsACommandForIt) {
  ::setenv("PATH", folder.path().c_str(), 1);
  const auto hasMail = [this] {
    const auto offered = targets(kPng);
    return !offered.empty() && offered.front().id == kMail;
  };
  EXPECT_FALSE(hasMail());
  writeScript(folder.file("xdg-email"));
  EXPECT_TRUE(hasMail());
}

TEST_F(LiveSharingTest, RemembersTheProgramThatTookAPictureAndForgetsOneThatIsGone) {
  const RecentTargets recent(defaults);
  writeScript(folder.file("xdg-email"));
  const FileURL file = picture("shot.png");
  ASSERT_TRUE(runLoopUntil([&] { return share(file, kViewer); }));
  EXPECT_EQ(recent.ids(), QStringList(kViewer));
  ASSERT_TRUE(share(file, kMail));
  EXPECT_FALSE(share(file, QStringLiteral("quillmere-no-such.desktop")));
  EXPECT_EQ(recent.ids(), QStringList(kViewer)) << "mail has its place, and what takes nothing none";
  RecentTargets(defaults).note(QStringLiteral("quillmere-no-such.desktop"));
  targets(kPng);
  EXPECT_EQ(recent.ids(), QStringList(kViewer));
}

class SharedNameTest : public LiveSharingTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SharedNameTest, ArrivesAsItIsInAnApplication) {
  const FileURL file = picture(GetParam());
  ASSERT_TRUE(runLoopUntil([&] { return share(file, kViewer); }));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines({"--open", file.path()}));
}

TEST_P(SharedNameTest, ArrivesAsItIsInAMail) {
  writeScript(folder.file("xdg-email"));
  const FileURL file = picture(GetParam());
  ASSERT_TRUE(share(file, kMail));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines({"--utf8", "--attach", file.path()}));
}

INSTANTIATE_TEST_SUITE_P(LiveSharing, SharedNameTest,
                         ::testing::Values("a b.png", "50%f%20.png", "a\nb.png", "\"a\" 'b' `c` $d \\e.png", "-o.png",
                                           "\xC3\xBC.png", "a\xFF\xFE.png"));

}  // namespace
}  // namespace quillmere
