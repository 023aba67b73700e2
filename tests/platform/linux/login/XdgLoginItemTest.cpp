#include "platform/linux/login/XdgLoginItem.h"

#include <sys/mount.h>
#include <unistd.h>

#include "platform/linux/common/ConfigurationText.h"
#include "platform/linux/login/LoginFixture.h"
#include "support/PrivateMounts.h"

namespace quillmere {
namespace {

class XdgLoginItemTest : public testing::LoginFixture {
 protected:
  XdgLoginItemTest() {
    install();
    places.own = home.file("config/autostart").appending(kEntry);
    places.shared = {home.file("etc/xdg/autostart").appending(kEntry)};
    places.desktops = {QStringLiteral("GNOME")};
  }
  XdgLoginItem item() const {
    return {places, programs, LoginSettings({{}, [](const QString&) { return false; }, [](const QStringList&) {}})};
  }
  LoginItemStatus status() const { return item().status(); }
  std::string entry() const { return "[Desktop Entry]\nType=Application\nExec=" + program + " --autostart\n"; }
  std::optional<std::string> written(const char* key) const {
    return configurationValue(read(places.own), {"Desktop Entry", key});
  }
  AutostartPlaces places;
};

TEST_F(XdgLoginItemTest, IsTurnedOnAndOffByItsEntry) {
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(item().registerItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(written("Exec"), "\"" + program + "\" --autostart");
  EXPECT_EQ(written("TryExec"), program);
  EXPECT_EQ(item().unregisterItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_FALSE(std::filesystem::exists(places.own.path())) << "nothing stays behind";
  EXPECT_EQ(item().unregisterItem(), std::nullopt) << "nor is it missed";
}

TEST_F(XdgLoginItemTest, FollowsWhatTheDesktopsToolsWrite) {
  write(places.own, entry());
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  write(places.own, entry() + "X-GNOME-Autostart-enabled=false\n");
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  write(places.own, entry() + "Hidden=true\n");
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(item().registerItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, AnEntryOfAllUsersCountsUntilThePersonsOwnHidesIt) {
  write(places.shared[0], entry());
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(item().unregisterItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(written("Hidden"), "true");
  EXPECT_EQ(read(places.shared[0]), entry());
  EXPECT_EQ(item().registerItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(written("Hidden"), std::nullopt);
}

TEST_F(XdgLoginItemTest, AnEntryThatStartsAProgramNoLongerThereIsOff) {
  write(places.own, "[Desktop Entry]\nExec=/gone/quillmere --autostart\n");
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(item().registerItem(), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled) << "it starts this one now";
}

TEST_F(XdgLoginItemTest, ACopyThatIsNotInstalledCannot) {
  programs.running = makeProgram("build/quillmere");
  EXPECT_EQ(status(), LoginItemStatus::notFound);
  write(places.own, entry());
  EXPECT_EQ(status(), LoginItemStatus::notFound) << "the installed one opens";
  EXPECT_EQ(item().registerItem(), QStringLiteral("This copy of Quillmere isn’t installed."));
  EXPECT_EQ(read(places.own), entry());
}

TEST_F(XdgLoginItemTest, WhatALinkLeadsToIsNeverWrittenTo) {
  const FileURL kept = home.file("dotfiles/entry.desktop");
  write(kept, "somebody's notes");
  std::filesystem::create_directories(places.own.parent().path());
  std::filesystem::create_symlink(kept.path(), places.own.path());
  EXPECT_EQ(item().registerItem(), std::nullopt);
  EXPECT_FALSE(std::filesystem::is_symlink(places.own.path()));
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(read(kept), "somebody's notes");
  EXPECT_EQ(item().unregisterItem(), std::nullopt);
  EXPECT_EQ(read(kept), "somebody's notes");
}

TEST_F(XdgLoginItemTest, NothingButTheEntryIsLeftInTheFolder) {
  EXPECT_EQ(item().registerItem(), std::nullopt);
  int files = 0;
  for (const auto& file : std::filesystem::directory_iterator(places.own.parent().path())) {
    EXPECT_EQ(file.path().filename(), kEntry);
    ++files;
  }
  EXPECT_EQ(files, 1);
}

TEST_F(XdgLoginItemTest, AFolderThatCannotBeMadeIsToldInTheSystemsWords) {
  write(home.file("config"), "a file in its place");
  EXPECT_EQ(item().registerItem(),
            QStringLiteral("“%1” couldn’t be changed: Not a directory.").arg(places.own.displayPath()));
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, AReadOnlyDiskIsToldInTheSystemsWords) {
  write(places.own, entry());
  const std::string folder = places.own.parent().path();
  const XdgLoginItem tried = item();
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              MUST(::mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) == 0);
              MUST(::mount(nullptr, folder.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0);
              XdgLoginItem changed = tried;
              const auto off = changed.unregisterItem();
              MUST(off && off->contains(QStringLiteral("Read-only file system")));
              const auto on = changed.registerItem();
              MUST(on && on->contains(QStringLiteral("Read-only file system")));
              MUST(changed.status() == LoginItemStatus::enabled);
              return {};
            }),
            "");
}

TEST_F(XdgLoginItemTest, AFullDiskIsToldAndLeavesWhatWasThere) {
  const std::string folder = places.own.parent().path();
  std::filesystem::create_directories(folder);
  const XdgLoginItem tried = item();
  const std::string old = entry() + "Hidden=true\n";
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              MUST(::mount("none", folder.c_str(), "tmpfs", 0, "size=8k") == 0);
              write(places.own, old);
              write(FileURL::fromPath(folder).appending("filler"), std::string(4096, 'x'));
              XdgLoginItem changed = tried;
              const auto on = changed.registerItem();
              MUST(on && on->contains(QStringLiteral("No space left on device")));
              MUST(read(places.own) == old);
              return {};
            }),
            "");
}

TEST_F(XdgLoginItemTest, AFolderOfAnotherUserIsToldInTheSystemsWords) {
  const std::string folder = places.own.parent().path();
  std::filesystem::create_directories(folder);
  const XdgLoginItem tried = item();
  const std::string top = home.file(".").path();
  EXPECT_EQ(testing::failureWithPrivateMounts([&]() -> std::string {
              constexpr uid_t kNobody = 65534;
              for (std::string path = folder; path.size() > 1; path = path.substr(0, path.rfind('/'))) {
                ::chmod(path.c_str(), 0755);
                if (path == "/tmp") break;
              }
              MUST(::chmod("/tmp", 01777) == 0);
              ::chmod(program.c_str(), 0755);
              MUST(::setresuid(kNobody, kNobody, kNobody) == 0);
              XdgLoginItem changed = tried;
              const auto on = changed.registerItem();
              MUST(on && on->contains(QStringLiteral("Permission denied")));
              return {};
            }),
            "");
}

TEST_F(XdgLoginItemTest, LivePlacesAreThoseOfTheSession) {
  const AutostartPlaces live = AutostartPlaces::live();
  EXPECT_EQ(live.own.displayPath(),
            qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/autostart/com.quillmere.app.desktop"));
  ASSERT_FALSE(live.shared.empty());
  EXPECT_EQ(live.shared[0].displayPath(), QStringLiteral("/etc/xdg/autostart/com.quillmere.app.desktop"));
}

}  // namespace
}  // namespace quillmere
