#include "platform/linux/shortcuts/GnomeShortcuts.h"

#include <gtest/gtest.h>
#include <QtCore/QProcess>

namespace quillmere {
namespace {

const QString kMedia = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys");
const QString kOwnCommand = QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/");

/// What a person has set, in the home of the tests. A process chooses the store and reads it once, at the first look at
/// any settings, so that it is written before all tests.
class PersonsKeys final : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("GSETTINGS_BACKEND", "keyfile");
    set(QStringLiteral("org.gnome.desktop.wm.keybindings"), QStringLiteral("show-desktop"),
        QStringLiteral("['<Primary><Shift><Super>g']"));
    set(kMedia, QStringLiteral("custom-keybindings"), "['" + kOwnCommand + "', 'nonsense', '/double//slash/']");
    set(kMedia + ".custom-keybinding:" + kOwnCommand, QStringLiteral("binding"), QStringLiteral("'<Primary><Alt>j'"));
  }

 private:
  static void set(const QString& schema, const QString& key, const QString& value) {
    EXPECT_EQ(QProcess::execute(QStringLiteral("gsettings"), {QStringLiteral("set"), schema, key, value}), 0);
  }
};
const auto* const kPersonsKeys = ::testing::AddGlobalTestEnvironment(new PersonsKeys);

TEST(GnomeShortcutsTest, StandardOnesPersonsOwnAndOwnCommandsAreRead) {
  const QStringList shortcuts = gnomeShortcuts();
  EXPECT_TRUE(shortcuts.contains("<Alt>F4")) << "a standard one";
  EXPECT_TRUE(shortcuts.contains("<Primary><Shift><Super>g"));
  EXPECT_TRUE(shortcuts.contains("<Primary><Alt>j"));
  EXPECT_FALSE(shortcuts.contains(""));
}

}  // namespace
}  // namespace quillmere
