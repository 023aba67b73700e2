#include "platform/linux/shortcuts/GnomeShortcuts.h"

#include <gtest/gtest.h>
#include <QtCore/QProcess>

namespace quillmere {
namespace {

/// As the person sets them, in the home of the tests.
void set(const QString& schema, const QString& key, const QString& value) {
  EXPECT_EQ(QProcess::execute(QStringLiteral("gsettings"), {QStringLiteral("set"), schema, key, value}), 0);
}

/// In one test: a process reads its settings' file once and then waits to be told of changes.
TEST(GnomeShortcutsTest, StandardOnesPersonsOwnAndOwnCommandsAreRead) {
  const QByteArray before = qgetenv("GSETTINGS_BACKEND");
  qputenv("GSETTINGS_BACKEND", "keyfile");
  const QString media = "org.gnome.settings-daemon.plugins.media-keys";
  const QString path = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/";
  set("org.gnome.desktop.wm.keybindings", "show-desktop", "['<Primary><Shift><Super>b']");
  set(media, "custom-keybindings", "['" + path + "', 'nonsense', '/double//slash/']");
  set(media + ".custom-keybinding:" + path, "binding", "'<Primary><Alt>r'");
  const QStringList shortcuts = gnomeShortcuts();
  EXPECT_TRUE(shortcuts.contains("<Alt>F4")) << "a standard one";
  EXPECT_TRUE(shortcuts.contains("<Primary><Shift><Super>b"));
  EXPECT_TRUE(shortcuts.contains("<Primary><Alt>r"));
  EXPECT_FALSE(shortcuts.contains(""));
  before.isEmpty() ? qunsetenv("GSETTINGS_BACKEND") : qputenv("GSETTINGS_BACKEND", before);
}

}  // namespace
}  // namespace quillmere
