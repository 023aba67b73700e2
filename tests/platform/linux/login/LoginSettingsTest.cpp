#include "platform/linux/login/LoginSettings.h"

#include <gtest/gtest.h>
#include <set>

#include "support/Printing.h"

namespace quillmere {
namespace {

class LoginSettingsTest : public ::testing::Test {
 protected:
  LoginSettings settings() {
    return LoginSettings({desktops, [this](const QString& program) { return installed.contains(program); },
                          [this](const QStringList& command) { started.push_back(command); }});
  }
  std::optional<QString> found() {
    const auto command = settings().command();
    return command ? std::optional(command->join(QLatin1Char(' '))) : std::nullopt;
  }
  QStringList desktops;
  std::set<QString> installed;
  std::vector<QStringList> started;
};

TEST_F(LoginSettingsTest, AreThoseOfTheDesktop) {
  installed = {QStringLiteral("gnome-tweaks"), QStringLiteral("gnome-control-center"), QStringLiteral("systemsettings"),
               QStringLiteral("xfce4-session-settings")};
  desktops = {QStringLiteral("ubuntu"), QStringLiteral("GNOME")};
  EXPECT_EQ(found(), QStringLiteral("gnome-tweaks")) << "of several the one that shows most";
  desktops = {QStringLiteral("KDE")};
  EXPECT_EQ(found(), QStringLiteral("systemsettings kcm_autostart"));
  desktops = {QStringLiteral("XFCE")};
  EXPECT_EQ(found(), QStringLiteral("xfce4-session-settings"));
}

TEST_F(LoginSettingsTest, OfAnUnknownDesktopAreAnyThatAreInstalled) {
  installed = {QStringLiteral("lxqt-config-session")};
  EXPECT_EQ(found(), QStringLiteral("lxqt-config-session"));
  desktops = {QStringLiteral("sway")};
  EXPECT_EQ(found(), QStringLiteral("lxqt-config-session"));
  desktops = {QStringLiteral("KDE")};
  EXPECT_EQ(found(), std::nullopt) << "another desktop's say nothing about this one";
}

TEST_F(LoginSettingsTest, AreOpenedWhereThereAreSome) {
  desktops = {QStringLiteral("KDE")};
  EXPECT_FALSE(settings().exist());
  settings().open();
  EXPECT_TRUE(started.empty());
  installed = {QStringLiteral("kcmshell5")};
  EXPECT_TRUE(settings().exist());
  settings().open();
  EXPECT_EQ(started, (std::vector<QStringList>{{QStringLiteral("kcmshell5"), QStringLiteral("kcm_autostart")}}));
}

TEST_F(LoginSettingsTest, LiveOnesLookAtThisComputer) {
  const auto live = LoginSettings::World::live();
  EXPECT_TRUE(live.isInstalled(QStringLiteral("sh")));
  EXPECT_FALSE(live.isInstalled(QStringLiteral("no-such-program")));
}

}  // namespace
}  // namespace quillmere
