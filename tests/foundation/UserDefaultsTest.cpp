#include "foundation/UserDefaults.h"

#include <gtest/gtest.h>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <filesystem>
#include <limits>
#include <memory>

#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class UserDefaultsTest : public ::testing::Test {
 protected:
  UserDefaults open() const { return UserDefaults(file.displayPath()); }
  QJsonObject json() const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(testing::readBytes(file))).object();
  }
  void write(std::string_view bytes) { testing::writeFile(file, bytes); }

  const testing::TemporaryFolder folder;
  const FileURL file = folder.file("settings.json");
  const QString key = QStringLiteral("quillmere.test-key");
};

TEST_F(UserDefaultsTest, AbsentKeyIsNone) {
  const UserDefaults defaults = open();
  EXPECT_EQ(defaults.boolean(key), std::nullopt);
  EXPECT_EQ(defaults.integer(key), std::nullopt);
  EXPECT_EQ(defaults.text(key), std::nullopt);
  EXPECT_EQ(defaults.data(key), std::nullopt);
}

TEST_F(UserDefaultsTest, BooleanSurvivesAReopen) {
  for (const bool value : {true, false}) {
    UserDefaults defaults = open();
    defaults.set(key, value);
    EXPECT_EQ(defaults.boolean(key), value);
    EXPECT_EQ(open().boolean(key), value);
    EXPECT_EQ(open().integer(key), std::nullopt);
    EXPECT_EQ(open().text(key), std::nullopt);
  }
}

TEST_F(UserDefaultsTest, WholeNumberSurvivesAReopen) {
  for (const int value : {0, 1, -1, 3600, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    UserDefaults defaults = open();
    defaults.set(key, value);
    EXPECT_EQ(defaults.integer(key), value);
    EXPECT_EQ(open().integer(key), value);
    EXPECT_EQ(open().boolean(key), std::nullopt);
    EXPECT_EQ(open().text(key), std::nullopt);
  }
}

TEST_F(UserDefaultsTest, TextSurvivesAReopen) {
  for (const char* value : {"", "plain", "ü 截图 \xF0\x9F\x96\xBC", "a\nb\t\"c\"\\", "true", "5", "@Invalid()",
                            "@ByteArray(x)", "a,b;c", "%20"}) {
    const QString text = QString::fromUtf8(value);
    UserDefaults defaults = open();
    defaults.set(key, text);
    EXPECT_EQ(defaults.text(key), text);
    EXPECT_EQ(open().text(key), text);
    EXPECT_EQ(open().boolean(key), std::nullopt);
    EXPECT_EQ(open().integer(key), std::nullopt);
  }
}

TEST_F(UserDefaultsTest, DataSurvivesAReopenAsBase64) {
  QByteArray all;
  for (int byte = 0; byte < 256; ++byte) all.append(static_cast<char>(byte));
  for (const QByteArray& value : {QByteArray(""), QByteArray("bookmark"), all}) {
    UserDefaults defaults = open();
    defaults.set(key, value);
    EXPECT_EQ(defaults.data(key), value);
    EXPECT_EQ(open().data(key), value);
    EXPECT_EQ(json()[key].toString().toLatin1(), value.toBase64());
  }
}

TEST_F(UserDefaultsTest, TextThatIsNoBase64IsNoData) {
  UserDefaults defaults = open();
  for (const char* value : {"not base64!", "ü", "ab==c"}) {
    defaults.set(key, QString::fromUtf8(value));
    EXPECT_EQ(defaults.data(key), std::nullopt) << value;
  }
}

TEST_F(UserDefaultsTest, FileIsOneFlatObjectWhoseValuesKeepTheirType) {
  UserDefaults defaults = open();
  defaults.set(QStringLiteral("quillmere.a"), true);
  defaults.set(QStringLiteral("quillmere.b"), -1);
  defaults.set(QStringLiteral("quillmere.c"), QStringLiteral("x"));
  EXPECT_EQ(json(), (QJsonObject{{QStringLiteral("quillmere.a"), true},
                                 {QStringLiteral("quillmere.b"), -1},
                                 {QStringLiteral("quillmere.c"), QStringLiteral("x")}}));
}

TEST_F(UserDefaultsTest, ValuesOfAnotherTypeAreNone) {
  for (const char* value : {"null", "[1]", "{\"a\":1}", "1.5"}) {
    write("{\"quillmere.test-key\":" + std::string(value) + "}");
    const UserDefaults defaults = open();
    EXPECT_EQ(defaults.boolean(key), std::nullopt) << value;
    EXPECT_EQ(defaults.integer(key), std::nullopt) << value;
    EXPECT_EQ(defaults.text(key), std::nullopt) << value;
    EXPECT_EQ(defaults.data(key), std::nullopt) << value;
  }
}

TEST_F(UserDefaultsTest, NumbersThatAreNotWholeOrTooLargeAreNone) {
  for (const char* value : {"0.5", "2147483648", "-2147483649", "1e30", "9223372036854775807"}) {
    write("{\"quillmere.test-key\":" + std::string(value) + "}");
    EXPECT_EQ(open().integer(key), std::nullopt) << value;
  }
  write("{\"quillmere.test-key\":6e1}");
  EXPECT_EQ(open().integer(key), 60);
}

TEST_F(UserDefaultsTest, RemovedKeyIsNone) {
  UserDefaults defaults = open();
  defaults.set(key, 5);
  defaults.remove(key);
  EXPECT_EQ(defaults.integer(key), std::nullopt);
  EXPECT_EQ(open().integer(key), std::nullopt);
  defaults.remove(key);
}

TEST_F(UserDefaultsTest, WriteIsOnTheDiskWhenItReturns) {
  UserDefaults defaults = open();
  defaults.set(key, 5);
  EXPECT_EQ(json()[key].toInt(), 5);
}

TEST_F(UserDefaultsTest, FileOfGarbageReadsAsNoSettingsAndCanBeWritten) {
  for (const std::string& bytes : {std::string(), std::string("garbage"), std::string("[1,2]"), std::string("{\"a\":"),
                                   std::string(64, '\0'), std::string("\xff\xfe"), std::string(1'000'000, '[')}) {
    write(bytes);
    UserDefaults defaults = open();
    EXPECT_EQ(defaults.boolean(key), std::nullopt);
    defaults.set(key, true);
    EXPECT_EQ(open().boolean(key), true);
  }
}

TEST_F(UserDefaultsTest, KeysOfOthersSurviveAWrite) {
  write(R"({"another":{"deep":[1,"x"]},"quillmere.kept":"text","number":12345678901})");
  open().set(key, true);
  EXPECT_EQ(json()[QStringLiteral("quillmere.kept")].toString(), QStringLiteral("text"));
  EXPECT_EQ(json()[QStringLiteral("number")].toDouble(), 12345678901.0);
  EXPECT_EQ(json()[QStringLiteral("another")].toObject()[QStringLiteral("deep")].toArray().size(), 2);
}

TEST_F(UserDefaultsTest, KeysTellCasesApart) {
  UserDefaults defaults = open();
  defaults.set(QStringLiteral("quillmere.a"), 1);
  defaults.set(QStringLiteral("quillmere.A"), 2);
  EXPECT_EQ(open().integer(QStringLiteral("quillmere.a")), 1);
  EXPECT_EQ(open().integer(QStringLiteral("quillmere.A")), 2);
}

TEST_F(UserDefaultsTest, FolderThatIsMissingIsMade) {
  const QString deep = folder.file("a/b/settings.json").displayPath();
  UserDefaults(deep).set(key, 7);
  EXPECT_EQ(UserDefaults(deep).integer(key), 7);
}

// --- A damaged file ---

TEST_F(UserDefaultsTest, OfADamagedFileEveryWholeLineIsKeptAndTheRestLiesBesideIt) {
  {
    UserDefaults defaults = open();
    defaults.set(QStringLiteral("quillmere.a"), true);
    defaults.set(QStringLiteral("quillmere.b"), QByteArray("the folder"));
    defaults.set(QStringLiteral("quillmere.c"), 7);
  }
  std::string damaged = testing::readBytes(file);
  damaged.replace(damaged.find("quillmere.c") - 1, 1, "\x01");
  write(damaged);
  {
    UserDefaults defaults = open();
    EXPECT_EQ(defaults.boolean(QStringLiteral("quillmere.a")), true);
    EXPECT_EQ(defaults.data(QStringLiteral("quillmere.b")), QByteArray("the folder"));
    EXPECT_EQ(defaults.integer(QStringLiteral("quillmere.c")), std::nullopt);
    defaults.set(QStringLiteral("quillmere.c"), 8);
  }
  EXPECT_EQ(testing::readBytes(folder.file("settings.damaged.json")), damaged);
  EXPECT_EQ(json().size(), 3);
  write("garbage");
  EXPECT_EQ(open().boolean(QStringLiteral("quillmere.a")), std::nullopt);
  EXPECT_EQ(testing::readBytes(folder.file("settings.damaged-2.json")), "garbage");
  EXPECT_EQ(testing::readBytes(folder.file("settings.damaged.json")), damaged) << "nothing is replaced";
}

TEST_F(UserDefaultsTest, AFileThatCannotBeCopiedAsideIsLeftAsItIs) {
  const FileURL longName = folder.file(std::string(250, 'x') + ".json");
  testing::writeFile(longName, "garbage");
  { const UserDefaults defaults(longName.displayPath()); }
  EXPECT_EQ(testing::readBytes(longName), "garbage");
}

TEST_F(UserDefaultsTest, APipeInThePlaceOfTheFileDoesNotHoldTheStart) {
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  UserDefaults defaults = open();
  EXPECT_EQ(defaults.boolean(key), std::nullopt);
  defaults.set(key, true);
  EXPECT_TRUE(defaults.write());
  EXPECT_EQ(json()[key], true);
}

TEST_F(UserDefaultsTest, AWriteAnswersWhetherItIsOnTheDisk) {
  UserDefaults defaults = open();
  defaults.set(key, true);
  EXPECT_TRUE(defaults.write());
  defaults.set(key, QByteArray("data"));
  EXPECT_TRUE(defaults.write());
  std::filesystem::remove(file.path());
  // A folder stands where the file should be written: refused to everyone.
  std::filesystem::create_directory(file.path());
  defaults.set(key, 7);
  EXPECT_FALSE(defaults.write());
  std::filesystem::remove(file.path());
  defaults.set(key, 8);
  EXPECT_TRUE(defaults.write()) << "it can be written again";
  EXPECT_EQ(json()[key], 8);
}

TEST_F(UserDefaultsTest, OnlyTheirOwnerCanReadThem) {
  const auto isPrivate = [&] {
    return std::filesystem::status(file.path()).permissions() ==
           (std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  };
  open().set(key, true);
  EXPECT_TRUE(isPrivate());
  std::filesystem::permissions(file.path(), std::filesystem::perms::all);
  open();
  EXPECT_TRUE(isPrivate()) << "as an earlier version may have left them";
}

TEST_F(UserDefaultsTest, NothingElseIsLeftBesideTheFile) {
  testing::writeFile(folder.file("settings.json.saving"), "of a write that was cut off");
  UserDefaults defaults = open();
  EXPECT_TRUE(testing::namesIn(folder.url()).empty());
  defaults.set(key, 5);
  EXPECT_EQ(testing::namesIn(folder.url()), std::vector<std::string>{"settings.json"});
}

TEST_F(UserDefaultsTest, WhatCouldNotBeWrittenIsWrittenWithTheNext) {
  UserDefaults defaults = open();
  const QString removed = QStringLiteral("quillmere.removed");
  const QString other = QStringLiteral("quillmere.other");
  defaults.set(removed, 1);
  const std::string before = testing::readBytes(file);
  std::filesystem::remove(file.path());
  std::filesystem::create_directory(file.path());
  defaults.set(key, 7);
  EXPECT_FALSE(defaults.write());
  defaults.remove(removed);
  EXPECT_EQ(defaults.integer(key), 7);
  std::filesystem::remove(file.path());
  write(before);
  defaults.set(other, 8);
  EXPECT_TRUE(defaults.write());
  EXPECT_EQ(json(), (QJsonObject{{key, 7}, {other, 8}}));
}

TEST_F(UserDefaultsTest, WhatStandsThereAlreadyIsNotWrittenAgain) {
  UserDefaults defaults = open();
  defaults.set(key, 5);
  const FileURL other = folder.file("another name of the same file");
  std::filesystem::create_hard_link(file.path(), other.path());
  defaults.set(key, 5);
  EXPECT_TRUE(defaults.write());
  EXPECT_TRUE(std::filesystem::equivalent(file.path(), other.path()));
  defaults.set(key, 6);
  EXPECT_TRUE(defaults.write());
  EXPECT_FALSE(std::filesystem::equivalent(file.path(), other.path()));
}

TEST_F(UserDefaultsTest, WhatAnotherProgramHasWrittenIsKept) {
  UserDefaults defaults = open();
  defaults.set(key, 5);
  write(R"({"quillmere.theirs":6})");
  defaults.set(QStringLiteral("quillmere.ours"), 7);
  EXPECT_EQ(json(), (QJsonObject{{QStringLiteral("quillmere.theirs"), 6}, {QStringLiteral("quillmere.ours"), 7}}));
}

// --- In the background ---

class WritingSettings : public UserDefaultsTest {
 protected:
  WritingSettings() {
    disk.holdBackground();
    defaults->writeInBackground(time, disk);
  }
  void refuseWrites() const {
    std::filesystem::remove(file.path());
    std::filesystem::create_directory(file.path());
  }

  ManualExecutor time;
  ManualExecutor disk;
  std::unique_ptr<UserDefaults> defaults = std::make_unique<UserDefaults>(file.displayPath());
  const QString other = QStringLiteral("quillmere.other");
};

TEST_F(WritingSettings, NobodyWaitsForTheDisk) {
  defaults->set(key, 5);
  EXPECT_EQ(defaults->integer(key), 5);
  EXPECT_FALSE(std::filesystem::exists(file.path()));
  disk.runHeldBackground();
  EXPECT_EQ(json()[key], 5);
}

TEST_F(WritingSettings, WhatIsSetMeanwhileIsWrittenTogetherAfterIt) {
  defaults->set(key, 5);
  defaults->set(key, 6);
  defaults->set(other, 7);
  EXPECT_EQ(disk.heldBackground(), 1u);
  disk.runHeldBackground();
  EXPECT_EQ(json(), (QJsonObject{{key, 6}, {other, 7}}));
  defaults->set(key, 8);
  disk.runHeldBackground();
  EXPECT_EQ(json()[key], 8);
  EXPECT_EQ(defaults->integer(other), 7);
}

TEST_F(WritingSettings, WhatFailsIsTriedAgainWithGrowingPauses) {
  refuseWrites();
  defaults->set(key, 5);
  disk.runHeldBackground();
  for (const int seconds : {1, 2, 4, 8, 16, 32, 32}) {
    EXPECT_EQ(time.nextDelay(), std::chrono::seconds(seconds));
    time.advance(std::chrono::seconds(seconds));
    disk.runHeldBackground();
  }
  EXPECT_EQ(defaults->integer(key), 5);
  std::filesystem::remove(file.path());
  time.advance(std::chrono::seconds(32));
  disk.runHeldBackground();
  EXPECT_EQ(json()[key], 5);
  EXPECT_EQ(time.pendingDelays(), 0u);
}

TEST_F(WritingSettings, AnotherSettingDoesNotWaitForThePause) {
  refuseWrites();
  defaults->set(key, 5);
  disk.runHeldBackground();
  std::filesystem::remove(file.path());
  defaults->set(other, 6);
  disk.runHeldBackground();
  EXPECT_EQ(json(), (QJsonObject{{key, 5}, {other, 6}}));
  EXPECT_EQ(time.pendingDelays(), 0u);
}

TEST_F(WritingSettings, WhoeverMustKnowWaits) {
  defaults->set(key, 5);
  EXPECT_TRUE(defaults->write());
  EXPECT_EQ(json()[key], 5);
  defaults->remove(key);
  EXPECT_TRUE(defaults->write());
  disk.runHeldBackground();
  EXPECT_TRUE(json().isEmpty()) << "a write that was asked for earlier brings nothing back";
}

TEST_F(WritingSettings, TheEndWritesTheRest) {
  defaults->set(key, 5);
  defaults.reset();
  EXPECT_EQ(json()[key], 5);
  disk.runHeldBackground();
  EXPECT_EQ(json()[key], 5);
}

TEST_F(WritingSettings, WhatAnotherProgramWroteMeanwhileIsKeptAndRead) {
  defaults->set(key, 5);
  write(R"({"quillmere.theirs":6})");
  disk.runHeldBackground();
  EXPECT_EQ(json(), (QJsonObject{{QStringLiteral("quillmere.theirs"), 6}, {key, 5}}));
  EXPECT_EQ(defaults->integer(QStringLiteral("quillmere.theirs")), 6);
}

}  // namespace
}  // namespace quillmere
