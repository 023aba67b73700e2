// A watched folder whose disk leaves and returns: the monitor with the real mount table, events and file systems.

#include <sys/stat.h>
#include <unistd.h>

#include "monitor/ScreenshotInboxMonitor.h"
#include "platform/linux/common/QtExecutor.h"
#include "platform/linux/files/LiveFolderEventSource.h"
#include "platform/linux/files/LiveSecurityScopeAccess.h"
#include "platform/linux/files/MountTable.h"
#include "support/EventLoop.h"
#include "support/FakeScanServices.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::run;
using testing::runLoopUntil;

/// A monitor as the program has it, but for what it thinks of pictures; made in the child process.
class Watch {
 public:
  explicit Watch(const FileURL& folder) {
    services_->anyFile.dates.created = now();
    ScanServices services = services_.services();
    services.isVolumeMounted = [this](const FileURL& url) { return mounts.isVolumeMounted(url); };
    monitor_ = std::make_unique<ScreenshotInboxMonitor>(executor_, events_, source_, std::move(services), &now);
    monitor_->onStatusChange = [this](WatcherStatus status) { statuses.push_back(status); };
    monitor_->onScreenshot = [this](const FileURL& url) { shots.push_back(url.lastPathComponent()); };
    observer_ = events_.volumesDidChange.connect([this] { ++changes; });
    monitor_->watch(folder);
    monitor_->start();
  }
  bool comesTo(WatcherStatus status) const {
    return runLoopUntil([&] { return !statuses.empty() && statuses.back() == status && !monitor_->isScanning(); });
  }
  bool finds(const std::string& name) const {
    return runLoopUntil([&] { return shots == std::vector<std::string>{name}; });
  }

 private:
  static Date now() {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return Date::fromUnix(time.tv_sec, static_cast<uint32_t>(time.tv_nsec));
  }

  QtExecutor executor_;
  SystemEvents events_;
  LiveFolderEventSource source_;
  testing::FakeScanServices services_;
  Connection observer_;

 public:
  MountTable mounts{&events_};
  std::vector<WatcherStatus> statuses;
  std::vector<std::string> shots;
  int changes = 0;

 private:
  std::unique_ptr<ScreenshotInboxMonitor> monitor_;
};

class VolumesComeAndGoTest : public ::testing::Test {
 protected:
  VolumesComeAndGoTest() { std::filesystem::create_directory(disk.path()); }
  /// With the disk connected and the folder on it.
  void withDisk(const std::function<std::string()>& work) {
    EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
                MUST(testing::mountDisk(image.path(), disk.path()) && run("mkdir '" + shots.path() + "'"));
                return work();
              }),
              "");
  }
  bool connect() const { return testing::connectDisk(image.path(), disk.path()); }
  bool disconnect() const { return ::umount(disk.c_str()) == 0; }
  /// As choosing the folder does.
  void expectDisk(Watch& watch) const { watch.mounts.expect({shots, disk.path()}); }
  bool write(const char* name) const { return run("echo picture > '" + shots.appending(name).path() + "'"); }

  testing::TemporaryFolder folder;
  FileURL image = folder.file("image");
  FileURL disk = folder.file("disk");
  FileURL shots = disk.appending("shots");
};

TEST_F(VolumesComeAndGoTest, AFolderComesBackWithItsDisk) {
  withDisk([&]() -> std::string {
    Watch watch(shots);
    expectDisk(watch);
    MUST(watch.comesTo(WatcherStatus::watching));
    const int before = watch.changes;
    MUST(disconnect() && watch.comesTo(WatcherStatus::volumeNotConnected));
    MUST(!watch.mounts.isVolumeMounted(shots));
    MUST(runLoopUntil([&] { return watch.changes > before; }));
    const int away = watch.changes;
    MUST(connect() && watch.comesTo(WatcherStatus::watching));
    MUST(watch.mounts.isVolumeMounted(shots) && watch.changes > away);
    MUST(write("new.png") && watch.finds("new.png"));
    return {};
  });
}

TEST_F(VolumesComeAndGoTest, AFolderDeletedFromItsDiskIsNotFound) {
  withDisk([&]() -> std::string {
    Watch watch(shots);
    expectDisk(watch);
    MUST(watch.comesTo(WatcherStatus::watching));
    MUST(::rmdir(shots.c_str()) == 0 && watch.comesTo(WatcherStatus::notFound));
    MUST(disconnect() && watch.comesTo(WatcherStatus::volumeNotConnected));
    MUST(connect() && watch.comesTo(WatcherStatus::notFound));
    return {};
  });
}

TEST_F(VolumesComeAndGoTest, AFolderOfTheSameNameUnderTheMountPointIsNotTheOneOnTheDisk) {
  std::filesystem::create_directory(shots.path());
  withDisk([&]() -> std::string {
    Watch watch(shots);
    expectDisk(watch);
    MUST(watch.comesTo(WatcherStatus::watching));
    MUST(disconnect() && watch.comesTo(WatcherStatus::volumeNotConnected));
    MUST(write("under.png"));
    MUST(connect() && watch.comesTo(WatcherStatus::watching));
    MUST(::unlink(shots.appending("new.png").c_str()) != 0);
    MUST(write("new.png") && watch.finds("new.png"));
    return {};
  });
}

TEST_F(VolumesComeAndGoTest, ADiskThatIsAwayAtTheStartIsNotConnectedUntilItComes) {
  withDisk([&]() -> std::string {
    MUST(disconnect());
    Watch watch(shots);
    expectDisk(watch);
    MUST(watch.comesTo(WatcherStatus::volumeNotConnected));
    MUST(connect() && watch.comesTo(WatcherStatus::watching));
    return {};
  });
}

TEST_F(VolumesComeAndGoTest, AWatchedFolderDoesNotKeepItsDiskBusy) {
  withDisk([&]() -> std::string {
    Watch watch(shots);
    MUST(watch.comesTo(WatcherStatus::watching));
    MUST(write("a.png") && watch.finds("a.png"));
    MUST(disconnect());
    return {};
  });
}

TEST_F(VolumesComeAndGoTest, AnotherDiskThatComesDoesNotDisturbTheWatch) {
  withDisk([&]() -> std::string {
    testing::TemporaryFolder other;
    Watch watch(shots);
    expectDisk(watch);
    MUST(watch.comesTo(WatcherStatus::watching));
    const int before = watch.changes;
    MUST(::mount("tmpfs", other.path().c_str(), "tmpfs", 0, "size=1m") == 0);
    MUST(runLoopUntil([&] { return watch.changes > before; }));
    MUST(write("new.png") && watch.finds("new.png"));
    MUST(watch.statuses == std::vector<WatcherStatus>{WatcherStatus::watching});
    MUST(::umount(other.path().c_str()) == 0);
    return {};
  });
}

}  // namespace
}  // namespace quillmere
