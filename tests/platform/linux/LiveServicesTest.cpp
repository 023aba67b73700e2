#include "platform/linux/LiveServices.h"

#include <QtGui/QImage>

#include "formats/ImageFile.h"
#include "foundation/FileStatus.h"
#include "support/EventLoop.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

TEST(ApplicationPathsTest, FollowTheBaseDirectoriesAndAreMade) {
  const FileURL data = FileURL::fromPath(std::getenv("XDG_DATA_HOME"));
  const FileURL config = FileURL::fromPath(std::getenv("XDG_CONFIG_HOME"));
  std::filesystem::remove_all(data.path());
  const ApplicationPaths paths = ApplicationPaths::standard();
  EXPECT_EQ(paths.support, data.appending("Quillmere"));
  EXPECT_EQ(paths.recordList, data.appending("Quillmere/screenshots.json"));
  EXPECT_EQ(paths.runMarker.parent(), paths.support);
  EXPECT_EQ(paths.settings, config.appending("Quillmere/settings.json").displayPath());
  EXPECT_TRUE(isReadableDirectory(paths.support)) << "without it nothing can be put in the Trash";
  for (const FileURL& folder : {paths.support, config.appending("Quillmere")}) {
    EXPECT_EQ(std::filesystem::status(folder.path()).permissions(), std::filesystem::perms::owner_all);
  }
}

class LiveServicesTest : public ::testing::Test {
 protected:
  testing::TemporaryFolder folder;
  ApplicationPaths paths = ApplicationPaths::standard();
  LiveServices services{paths};
  AppModelDependencies dependencies = services.dependencies(paths);
};

TEST_F(LiveServicesTest, EveryDependencyButTheWindowsIsThere) {
  EXPECT_TRUE(dependencies.executor && dependencies.defaults && dependencies.fileOperations &&
              dependencies.securityScope && dependencies.watchFolderStore && dependencies.monitor &&
              dependencies.announcer && dependencies.systemEvents);
  EXPECT_TRUE(dependencies.now && dependencies.timeZone && dependencies.isInTrash && dependencies.fileIdentity &&
              dependencies.isFolderReachable && dependencies.isDataless && dependencies.isUbiquitous &&
              dependencies.isVolumeMounted && dependencies.captureKind && dependencies.defaultScreenshotFolder &&
              dependencies.hotKeys && dependencies.loginItems);
}

TEST_F(LiveServicesTest, TheClockIsTheWallClock) {
  const FileURL file = folder.file("a");
  testing::writeFile(file, "");
  EXPECT_NEAR(dependencies.now().seconds, fileStatus(file)->modified.seconds, 60);
}

TEST_F(LiveServicesTest, AFolderIsReachableWhileItCanBeRead) {
  EXPECT_TRUE(dependencies.isFolderReachable(folder.url()));
  EXPECT_FALSE(dependencies.isFolderReachable(folder.file("missing")));
}

TEST_F(LiveServicesTest, TheDefaultFolderIsThePicturesScreenshotsElsePicturesElseHome) {
  const FileURL home = FileURL::fromPath(std::getenv("HOME"));
  EXPECT_EQ(dependencies.defaultScreenshotFolder(), home);
  std::filesystem::create_directories(home.appending("Pictures").path());
  EXPECT_EQ(dependencies.defaultScreenshotFolder(), home.appending("Pictures"));
  std::filesystem::create_directories(home.appending("Pictures/Screenshots").path());
  EXPECT_EQ(dependencies.defaultScreenshotFolder(), home.appending("Pictures/Screenshots"));
  std::filesystem::remove_all(home.appending("Pictures").path());
}

TEST_F(LiveServicesTest, AThumbnailThatOthersShareGoesWithItsFile) {
  const FileURL file = folder.file("a.png");
  QImage picture(200, 100, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(file.displayPath()));
  testing::setModified(file, Date{700000000});
  services.thumbnails->keep(file, *fileStatus(file), ImageFile::thumbnail(file, 128));
  const FileURL cache = FileURL::fromPath(std::getenv("XDG_CACHE_HOME")).appending("thumbnails/normal");
  ASSERT_EQ(testing::namesIn(cache).size(), 1u);
  ASSERT_EQ(dependencies.fileOperations->trash(file), FileOutcome::done);
  EXPECT_TRUE(testing::runLoopUntil([&] { return testing::namesIn(cache).empty(); }));
}

TEST_F(LiveServicesTest, AnAnnouncementWithoutAssistiveTechnologyIsSilent) {
  dependencies.announcer->announce(QStringLiteral("Nobody listens"), AnnouncementPriority::high);
}

}  // namespace
}  // namespace quillmere
