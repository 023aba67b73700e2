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
const QString kAlbum = QStringLiteral("quillmere-test-album.desktop");
const QString kMail = QStringLiteral("email");

const std::vector<std::string> kNames{"a b.png", "50%f%20.png",  "a\nb.png",     "\"a\" 'b' `c` $d \\e.png",
                                      "-o.png",  "\xC3\xBC.png", "a\xFF\xFE.png"};

/// The applications of this desktop and two of the test's own, a command that writes down what it was given: one is
/// started for each file, the other takes all at a time.
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
    writeFile(
        applications.appending(kAlbum.toStdString()),
        "[Desktop Entry]\nType=Application\nName=Test Album\nIcon=album-icon\nMimeType=image/png;image/heic;\nExec=\"" +
            command.path() + "\" --album %F\n");
    writeFile(FileURL::fromPath(std::getenv("XDG_CONFIG_HOME")).appending("mimeapps.list"),
              "[Added Associations]\nimage/png=" + kViewer.toStdString() + ";" + kAlbum.toStdString() +
                  ";\nimage/heic=" + kAlbum.toStdString() +
                  ";\n[Default Applications]\nimage/png=" + kViewer.toStdString() + ";\n");
    ::setenv("PATH", (folder.path() + ":/usr/bin:/bin").c_str(), 1);
  }
  ~LiveSharingTest() override { ::setenv("PATH", path.c_str(), 1); }

  void writeScript(const FileURL& place) const {
    writeFile(place, "#!/bin/sh\nprintf '%s\\n--\\n' \"$@\" > '" + folder.path() + "/writing'\nmv '" + folder.path() +
                         "/writing' '" + written.path() + "'\n");
    std::filesystem::permissions(place.path(), std::filesystem::perms::owner_all);
  }
  std::vector<ShareTarget> targets(const QStringList& types) {
    const auto asking = sharing.targets(types);
    executor.drain();
    return asking.await_resume();
  }
  bool share(const std::vector<FileURL>& files, const QString& target) {
    std::vector<PreparedTransfer> transfers;
    for (const FileURL& file : files) transfers.push_back({file, kPng});
    const auto opening = sharing.share(transfers, target);
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
  LiveSharing sharing{executor, defaults, QDBusConnection(QStringLiteral("no bus"))};
};

TEST_F(LiveSharingTest, OffersTheApplicationsForSuchPicturesTheDesktopsChoiceFirst) {
  ASSERT_TRUE(runLoopUntil([this] {
    const auto offered = targets({kPng});
    return std::any_of(offered.begin(), offered.end(), [](const ShareTarget& target) { return target.id == kViewer; });
  }));
  auto offered = targets({kPng});
  std::erase_if(offered, [](const ShareTarget& target) { return target.id == kMail; });
  EXPECT_EQ(offered.front().id, kViewer);
  EXPECT_EQ(offered.front().name, QStringLiteral("Test Viewer"));
  EXPECT_EQ(offered.front().icon, QStringLiteral("viewer-icon"));
  EXPECT_EQ(offered.front().group, ShareTarget::Group::program);
  for (const ShareTarget& target : targets({QStringLiteral("image/x-of-no-application")})) EXPECT_EQ(target.id, kMail);
}

TEST_F(LiveSharingTest, AsksAndOpensInTheBackground) {
  const auto asking = sharing.targets({kPng});
  EXPECT_FALSE(asking.isDone());
  const std::vector<PreparedTransfer> shots{{picture("shot.png"), kPng}};
  const auto opening = sharing.share(shots, kViewer);
  EXPECT_FALSE(opening.isDone());
  executor.drain();
  EXPECT_TRUE(asking.isDone());
  EXPECT_TRUE(opening.isDone());
}

TEST_F(LiveSharingTest, ATargetThatIsGoneTakesNothing) {
  EXPECT_FALSE(share({picture("shot.png")}, QStringLiteral("quillmere-no-such.desktop")));
}

TEST_F(LiveSharingTest, AFileThatIsGoneIsGivenToNobody) {
  writeScript(folder.file("xdg-email"));
  const FileURL gone = folder.file("gone.png");
  EXPECT_FALSE(share({gone}, kViewer));
  EXPECT_FALSE(share({gone}, kMail));
  const FileURL there = picture("shot.png");
  for (const QString& target : {kAlbum, kMail}) EXPECT_FALSE(share({there, gone}, target)) << "all or none";
  EXPECT_FALSE(share({}, kAlbum));
  EXPECT_FALSE(std::filesystem::exists(written.path()));
}

TEST_F(LiveSharingTest, OffersMailWhereThereIsACommandForIt) {
  ::setenv("PATH", folder.path().c_str(), 1);
  const auto hasMail = [this] {
    const auto offered = targets({kPng});
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
  ASSERT_TRUE(runLoopUntil([&] { return share({file}, kViewer); }));
  EXPECT_EQ(recent.ids(), QStringList(kViewer));
  ASSERT_TRUE(share({file}, kMail));
  EXPECT_FALSE(share({file}, QStringLiteral("quillmere-no-such.desktop")));
  EXPECT_EQ(recent.ids(), QStringList(kViewer)) << "mail has its place, and what takes nothing none";
  RecentTargets(defaults).note(QStringLiteral("quillmere-no-such.desktop"));
  targets({kPng});
  EXPECT_EQ(recent.ids(), QStringList(kViewer));
}

TEST_F(LiveSharingTest, OffersForPicturesOfSeveralTypesWhatTakesEachOfThem) {
  const auto programs = [this](const QStringList& types) {
    QStringList ids;
    for (const ShareTarget& target : targets(types)) {
      if (target.id != kMail) ids += target.id;
    }
    return ids;
  };
  ASSERT_TRUE(runLoopUntil([&] { return programs({kPng}).mid(0, 2) == QStringList({kViewer, kAlbum}); }));
  const QString heic = QStringLiteral("image/heic");
  for (const QStringList& types : {QStringList{kPng, heic}, {heic, kPng}, {kPng, kPng, heic}}) {
    EXPECT_TRUE(programs(types).contains(kAlbum));
    EXPECT_FALSE(programs(types).contains(kViewer));
  }
  EXPECT_EQ(programs({kPng, kPng}).value(0), kViewer);
}

TEST_F(LiveSharingTest, SeveralGoToAProgramInOneStart) {
  std::vector<std::string> words{"--album"};
  std::vector<FileURL> files;
  for (const std::string& name : kNames) words.push_back(files.emplace_back(picture(name)).path());
  ASSERT_TRUE(runLoopUntil([&] { return share(files, kAlbum); }));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines(words));
  EXPECT_EQ(RecentTargets(defaults).ids(), QStringList(kAlbum)) << "remembered once";
}

TEST_F(LiveSharingTest, SeveralGoIntoOneMail) {
  writeScript(folder.file("xdg-email"));
  std::vector<std::string> words{"--utf8"};
  std::vector<FileURL> files;
  for (const std::string& name : kNames) {
    words.emplace_back("--attach");
    words.push_back(files.emplace_back(picture(name)).path());
  }
  ASSERT_TRUE(share(files, kMail));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines(words));
}

class SharedNameTest : public LiveSharingTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SharedNameTest, ArrivesAsItIsInAnApplication) {
  const FileURL file = picture(GetParam());
  ASSERT_TRUE(runLoopUntil([&] { return share({file}, kViewer); }));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines({"--open", file.path()}));
}

TEST_P(SharedNameTest, ArrivesAsItIsInAMail) {
  writeScript(folder.file("xdg-email"));
  const FileURL file = picture(GetParam());
  ASSERT_TRUE(share({file}, kMail));
  ASSERT_TRUE(runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(readBytes(written), lines({"--utf8", "--attach", file.path()}));
}

INSTANTIATE_TEST_SUITE_P(LiveSharing, SharedNameTest, ::testing::ValuesIn(kNames));

}  // namespace
}  // namespace quillmere
