#include "platform/linux/appearance/DesktopAppearance.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

class DesktopAppearanceTest : public ::testing::Test {
 protected:
  DesktopAppearanceTest() {
    sources.sessionBus = [] {
      return QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("nowhere"));
    };
    sources.kdeSettings = folder.file("kdeglobals").displayPath();
    testing::writeFile(folder.file("kdeglobals"), "[Colors:Window]\nBackgroundNormal=32,35,38\n");
  }
  testing::TemporaryFolder folder;
  AppearanceSources sources;
  ManualExecutor executor;
  std::vector<Appearance> told;
};

TEST_F(DesktopAppearanceTest, WhatIsKnownAtOnceIsToldOnceBeforeAnyBusIsAsked) {
  executor.holdBackground();
  const DesktopAppearance desktop(executor, sources, [this](const Appearance& now) { told.push_back(now); });
  ASSERT_EQ(told.size(), 1);
  EXPECT_EQ(told[0].scheme, Scheme::dark);
}

TEST_F(DesktopAppearanceTest, WithoutABusTheOtherSourcesStand) {
  const DesktopAppearance desktop(executor, sources, [this](const Appearance& now) { told.push_back(now); });
  executor.drain();
  ASSERT_EQ(told.size(), 1);
  EXPECT_EQ(told[0].scheme, Scheme::dark);
}

TEST_F(DesktopAppearanceTest, NothingIsFollowedForOneWhoWentBeforeTheBusAnswered) {
  executor.holdBackground();
  {
    const DesktopAppearance desktop(executor, sources, [this](const Appearance& now) { told.push_back(now); });
  }
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(told.size(), 1);
}

TEST_F(DesktopAppearanceTest, KdesSettingsCountOnKdeAlone) {
  for (const char* desktops : {"KDE", "kde", "ubuntu:KDE"}) {
    qputenv("XDG_CURRENT_DESKTOP", desktops);
    EXPECT_TRUE(AppearanceSources::live().kdeSettings.endsWith(QLatin1String("/kdeglobals"))) << desktops;
  }
  for (const char* desktops : {"GNOME", "XFCE", ""}) {
    qputenv("XDG_CURRENT_DESKTOP", desktops);
    EXPECT_EQ(AppearanceSources::live().kdeSettings, QString()) << desktops;
  }
  qunsetenv("XDG_CURRENT_DESKTOP");
}

}  // namespace
}  // namespace quillmere
