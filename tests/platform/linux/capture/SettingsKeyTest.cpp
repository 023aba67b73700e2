#include "platform/linux/capture/SettingsKey.h"

#include "support/CaptureFixture.h"

namespace quillmere {
namespace {

class SettingsKeyTest : public ::testing::Test {
 protected:
  SettingsKeyTest() { testing::useOwnSettingsStore(); }
  ~SettingsKeyTest() override { key.write(std::nullopt); }
  const SettingsKey key{"com.quillmere.test", "folder"};
};

TEST_F(SettingsKeyTest, UntilThePersonSetsItTheInstallationsValueCounts) {
  EXPECT_EQ(key.value(), std::nullopt);
  EXPECT_EQ(key.effectiveValue(), "/of/the/installation");
  EXPECT_FALSE(key.isSchemaUsed());
}

TEST_F(SettingsKeyTest, WhatIsWrittenIsReadAndCanBeReset) {
  EXPECT_TRUE(key.canWrite());
  EXPECT_TRUE(key.write("/ä b"));
  EXPECT_EQ(key.value(), "/ä b");
  EXPECT_EQ(key.effectiveValue(), "/ä b");
  EXPECT_TRUE(key.isSchemaUsed());
  EXPECT_TRUE(key.write(std::nullopt));
  EXPECT_EQ(key.value(), std::nullopt);
}

TEST_F(SettingsKeyTest, AnEmptyTextIsAValue) {
  EXPECT_TRUE(key.write(""));
  EXPECT_EQ(key.value(), "");
}

TEST_F(SettingsKeyTest, WithoutItsSchemaThereIsNoValueAndNoneIsWritten) {
  const SettingsKey missing("com.quillmere.not.there", "folder");
  EXPECT_EQ(missing.value(), std::nullopt);
  EXPECT_EQ(missing.effectiveValue(), std::nullopt);
  EXPECT_FALSE(missing.canWrite());
  EXPECT_FALSE(missing.write("/a"));
  EXPECT_FALSE(missing.write(std::nullopt));
  EXPECT_FALSE(missing.isSchemaUsed());
}

TEST_F(SettingsKeyTest, AKeyThatIsMissingOrHoldsNoTextIsLeftAlone) {
  for (const char* name : {"away", "number"}) {
    const SettingsKey other("com.quillmere.test", name);
    EXPECT_EQ(other.effectiveValue(), std::nullopt);
    EXPECT_FALSE(other.write("/a"));
  }
}

}  // namespace
}  // namespace quillmere
