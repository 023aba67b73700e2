#include "platform/linux/common/ConfigurationText.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using std::nullopt;

const ConfigurationKey kKey{"Save", "folder"};
const ConfigurationKey kGroupless{"", "folder"};

// --- configurationValue ---

TEST(ConfigurationValueTest, StandsInItsGroup) {
  EXPECT_EQ(configurationValue("[Save]\nfolder=/a\n", kKey), "/a");
  EXPECT_EQ(configurationValue("[Other]\nfolder=/no\n[Save]\nx=1\nfolder=/a", kKey), "/a");
  EXPECT_EQ(configurationValue("[Other]\nfolder=/no\n", kKey), nullopt);
  EXPECT_EQ(configurationValue("folder=/no\n[Save]\n", kKey), nullopt);
  EXPECT_EQ(configurationValue("", kKey), nullopt);
}

TEST(ConfigurationValueTest, WithoutAGroupItStandsBeforeAnyGroup) {
  EXPECT_EQ(configurationValue("app=none\nfolder=/a\n", kGroupless), "/a");
  EXPECT_EQ(configurationValue("app=none\n[Group]\nfolder=/no\n", kGroupless), nullopt);
}

TEST(ConfigurationValueTest, IsTakenLessTheWhiteSpaceAround) {
  EXPECT_EQ(configurationValue("[Save]\nfolder = /a b \t\n", kKey), "/a b");
  EXPECT_EQ(configurationValue("[Save]\r\nfolder=/a\r\n", kKey), "/a");
  EXPECT_EQ(configurationValue("  [Save]  \n\tfolder\t=\t/a", kKey), "/a");
}

TEST(ConfigurationValueTest, MayBeEmptyWhichIsNotUnset) {
  EXPECT_EQ(configurationValue("[Save]\nfolder=\n", kKey), "");
  EXPECT_EQ(configurationValue("[Save]\nfolder=  \r\n", kKey), "");
}

TEST(ConfigurationValueTest, MayHoldEqualsSigns) {
  EXPECT_EQ(configurationValue("[Save]\nfolder=/a=b\n", kKey), "/a=b");
}

TEST(ConfigurationValueTest, TheKeyMayHaveOptions) {
  EXPECT_EQ(configurationValue("[Save]\nfolder[$e]=$HOME/a\n", kKey), "$HOME/a");
  EXPECT_EQ(configurationValue("[Save][$i]\nfolder[$ei]=/a\n", kKey), "/a");
}

TEST(ConfigurationValueTest, OtherKeysAndGroupsOnlyLookAlike) {
  EXPECT_EQ(configurationValue("[Save]\nfolder[de]=/a\nfolder2=/b\n#folder=/c\n; folder=/d\nfolder\n", kKey), nullopt);
  EXPECT_EQ(configurationValue("[Save][Sub]\nfolder=/a\n[Saved]\nfolder=/b\n[save]\nfolder=/c\n", kKey), nullopt);
}

TEST(ConfigurationValueTest, OfSeveralTheLastCounts) {
  EXPECT_EQ(configurationValue("[Save]\nfolder=/a\nfolder=/b\n", kKey), "/b");
  EXPECT_EQ(configurationValue("[Save]\nfolder=/a\n[Other]\n[Save]\nfolder=/b\n", kKey), "/b");
}

TEST(ConfigurationValueTest, AMarkOfDeletionEndsWhatStoodBefore) {
  EXPECT_EQ(configurationValue("[Save]\nfolder=/a\nfolder[$d]\n", kKey), nullopt);
  EXPECT_EQ(configurationValue("[Save]\nfolder[$d]\nfolder=/a\n", kKey), "/a");
}

// --- withConfigurationValue ---

TEST(WithConfigurationValueTest, OnlyTheValueChanges) {
  EXPECT_EQ(withConfigurationValue("# A comment\n\n[Other]\nfolder=/x\n[Save]\nb = 1\n folder[$e] =  $HOME/a \na=2\n"
                                   "unknown\n[Last]\nc=3",
                                   kKey, "/new"),
            "# A comment\n\n[Other]\nfolder=/x\n[Save]\nb = 1\n folder[$e] =  /new \na=2\nunknown\n[Last]\nc=3");
}

TEST(WithConfigurationValueTest, LineEndingsStay) {
  EXPECT_EQ(withConfigurationValue("[Save]\r\nfolder=/a\r\nb=1\n", kKey, "/new"), "[Save]\r\nfolder=/new\r\nb=1\n");
  EXPECT_EQ(withConfigurationValue("[Save]\r\nb=1\r\n", kKey, "/new"), "[Save]\r\nfolder=/new\r\nb=1\r\n");
  EXPECT_EQ(withConfigurationValue("[Save]\nfolder=/a", kKey, "/new"), "[Save]\nfolder=/new");
}

TEST(WithConfigurationValueTest, BytesThatAreNoTextStay) {
  EXPECT_EQ(withConfigurationValue("[Save]\nname=\xff\xfe\nfolder=/\xe4\n", kKey, "/new"),
            "[Save]\nname=\xff\xfe\nfolder=/new\n");
}

TEST(WithConfigurationValueTest, AnEmptyValueIsFilled) {
  EXPECT_EQ(withConfigurationValue("[Save]\nfolder=\nb=1\n", kKey, "/new"), "[Save]\nfolder=/new\nb=1\n");
}

TEST(WithConfigurationValueTest, AMissingKeyIsPutIntoItsGroup) {
  EXPECT_EQ(withConfigurationValue("[Other]\na=1\n[Save]\nb=2\n", kKey, "/new"),
            "[Other]\na=1\n[Save]\nfolder=/new\nb=2\n");
  EXPECT_EQ(withConfigurationValue("[Save]", kKey, "/new"), "[Save]\nfolder=/new\n");
  EXPECT_EQ(withConfigurationValue("app=none\n", kGroupless, "/new"), "folder=/new\napp=none\n");
}

TEST(WithConfigurationValueTest, AMissingGroupIsPutAtTheEnd) {
  EXPECT_EQ(withConfigurationValue("", kKey, "/new"), "[Save]\nfolder=/new\n");
  EXPECT_EQ(withConfigurationValue("[Other]\na=1\n", kKey, "/new"), "[Other]\na=1\n\n[Save]\nfolder=/new\n");
  EXPECT_EQ(withConfigurationValue("[Other]\na=1", kKey, "/new"), "[Other]\na=1\n\n[Save]\nfolder=/new\n");
  EXPECT_EQ(withConfigurationValue("", kGroupless, "/new"), "folder=/new\n");
}

TEST(WithConfigurationValueTest, ANewLineStandsAfterAMarkOfDeletion) {
  const std::string text = withConfigurationValue("[Save]\nfolder=/a\nfolder[$d]\nb=1\n", kKey, "/new");
  EXPECT_EQ(text, "[Save]\nfolder=/a\nfolder[$d]\nfolder=/new\nb=1\n");
  EXPECT_EQ(configurationValue(text, kKey), "/new");
}

TEST(WithConfigurationValueTest, RemovingTakesTheLineAlone) {
  EXPECT_EQ(withConfigurationValue("# c\n[Save]\na=1\nfolder[$e]=/a\nb=2\n", kKey, nullopt), "# c\n[Save]\na=1\nb=2\n");
  EXPECT_EQ(withConfigurationValue("[Save]\na=1\n", kKey, nullopt), "[Save]\na=1\n");
}

TEST(WithConfigurationValueTest, RemovingLeavesNoEarlierValueInForce) {
  EXPECT_EQ(withConfigurationValue("[Save]\nfolder=/a\nb=1\nfolder=/b\n", kKey, nullopt), "[Save]\nb=1\n");
}

TEST(WithConfigurationValueTest, PuttingBackWhatWasThereGivesTheSameBytes) {
  for (const std::string before : {"[Save]\r\nfolder = /a\r\n", "[Save]\nb=1", "[Save]\nfolder[$e]=\n\n# end"}) {
    const std::string after = withConfigurationValue(before, kKey, "/new");
    EXPECT_EQ(withConfigurationValue(after, kKey, configurationValue(before, kKey)), before);
  }
}

// --- expandsVariables ---

TEST(ExpandsVariablesTest, IsAnOptionOfTheKey) {
  EXPECT_TRUE(expandsVariables("[Save]\nfolder[$e]=/a\n", kKey));
  EXPECT_TRUE(expandsVariables("[Save]\nfolder[$ie]=/a\n", kKey));
  EXPECT_FALSE(expandsVariables("[Save]\nfolder[$i]=/a\n", kKey));
  EXPECT_FALSE(expandsVariables("[Save]\nfolder[$e]=/a\nfolder=/a\n", kKey));
  EXPECT_FALSE(expandsVariables("", kKey));
}

}  // namespace
}  // namespace quillmere
