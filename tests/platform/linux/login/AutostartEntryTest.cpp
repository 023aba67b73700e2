#include "platform/linux/login/AutostartEntry.h"

#include <gtest/gtest.h>

#include "platform/linux/common/ConfigurationText.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

std::optional<std::string> value(const std::string& text, const char* key) {
  return configurationValue(text, {"Desktop Entry", key});
}

const AutostartEntry::Session kSession{{QStringLiteral("ubuntu"), QStringLiteral("GNOME")},
                                       [](const std::string& program) { return program == "/usr/bin/quillmere"; }};

bool isOn(const std::string& lines, const std::string& exec = "/usr/bin/quillmere --autostart") {
  return AutostartEntry::isOn("[Desktop Entry]\nType=Application\nExec=" + exec + "\n" + lines, kSession);
}

TEST(AutostartEntryTest, StartsTheProgramAsOneThatStartsAtLogin) {
  const std::string text = AutostartEntry::startingAtLogin("/usr/bin/quillmere");
  EXPECT_EQ(value(text, "Type"), "Application");
  EXPECT_EQ(value(text, "Name"), "Quillmere");
  EXPECT_EQ(value(text, "Exec"), "\"/usr/bin/quillmere\" --autostart");
  EXPECT_EQ(value(text, "TryExec"), "/usr/bin/quillmere");
  EXPECT_FALSE(value(text, "Hidden"));
  EXPECT_TRUE(AutostartEntry::isOn(text, kSession));
}

TEST(AutostartEntryTest, AHiddenOneStartsNothing) {
  const std::string text = AutostartEntry::hidden("/usr/bin/quillmere");
  EXPECT_EQ(value(text, "Hidden"), "true");
  EXPECT_FALSE(AutostartEntry::isOn(text, kSession));
}

TEST(AutostartEntryTest, AnyNameOfAProgramReadsBackAsItIs) {
  for (const std::string program : {"/usr/bin/quillmere", "/home/a b/quillmere", "/odd/\"quoted\"", "/odd/$HOME`x`",
                                    "/odd/back\\slash", "/odd/100%u", "/odd/line\nbreak", "/odd/tab\tin"}) {
    const std::string text = AutostartEntry::startingAtLogin(program);
    EXPECT_EQ(AutostartEntry::programOf(text), program);
    const AutostartEntry::Session session{{}, [&](const std::string& tried) { return tried == program; }};
    EXPECT_TRUE(AutostartEntry::isOn(text, session)) << program;
  }
}

TEST(AutostartEntryTest, WhatSwitchesOneOffInWhicheverToolIsOff) {
  EXPECT_TRUE(isOn(""));
  EXPECT_FALSE(isOn("Hidden=true\n"));
  EXPECT_TRUE(isOn("Hidden=false\n"));
  EXPECT_FALSE(isOn("X-GNOME-Autostart-enabled=false\n"));
  EXPECT_TRUE(isOn("X-GNOME-Autostart-enabled=true\n"));
}

TEST(AutostartEntryTest, OnesForOtherDesktopsAreOffHere) {
  EXPECT_TRUE(isOn("OnlyShowIn=GNOME;KDE;\n"));
  EXPECT_FALSE(isOn("OnlyShowIn=KDE;XFCE;\n"));
  EXPECT_FALSE(isOn("NotShowIn=KDE;GNOME\n"));
  EXPECT_TRUE(isOn("NotShowIn=KDE;\n"));
}

TEST(AutostartEntryTest, OneWhoseProgramIsGoneIsOff) {
  EXPECT_FALSE(isOn("", "/gone/quillmere --autostart"));
  EXPECT_FALSE(isOn("TryExec=/gone/quillmere\n"));
  EXPECT_TRUE(isOn("TryExec=/usr/bin/quillmere\n"));
  EXPECT_FALSE(isOn("", ""));
  EXPECT_FALSE(AutostartEntry::isOn("", kSession));
}

TEST(AutostartEntryTest, TheProgramIsTheFirstWordOfTheCommand) {
  EXPECT_EQ(AutostartEntry::programOf("[Desktop Entry]\nExec=quillmere --show inbox\n"), "quillmere");
  EXPECT_EQ(AutostartEntry::programOf("[Desktop Entry]\nExec=\"/a b/q\" %U\n"), "/a b/q");
  EXPECT_EQ(AutostartEntry::programOf("[Desktop Action x]\nExec=other\n[Desktop Entry]\nExec=q\n"), "q");
  EXPECT_EQ(AutostartEntry::programOf("nothing"), "");
}

}  // namespace
}  // namespace quillmere
