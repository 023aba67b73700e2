#include "records/JournalFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <filesystem>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class JournalFileTest : public ::testing::Test {
 protected:
  TemporaryFolder home;
  const FileURL file = home.file("data").appending("journal.json");
  const JournalFile journal{file};
};

TEST_F(JournalFileTest, WhatWasSavedIsLoaded) {
  ASSERT_TRUE(journal.save({1, QStringLiteral("two")}));
  EXPECT_EQ(journal.load(), (QJsonArray{1, QStringLiteral("two")}));
  EXPECT_THAT(namesIn(file.parent()), ::testing::ElementsAre("journal.json"));
}

TEST_F(JournalFileTest, WithoutEntriesThereIsNoFile) {
  ASSERT_TRUE(journal.save({1}));
  writeFile(home.file("data").appending("journal.json.saving"), "of a save that was cut off");
  EXPECT_TRUE(journal.save({}));
  EXPECT_TRUE(namesIn(file.parent()).empty());
  EXPECT_TRUE(journal.save({})) << "there is none already";
  EXPECT_TRUE(journal.load().empty());
}

TEST_F(JournalFileTest, WhatCannotBeReadHasNoEntries) {
  std::filesystem::create_directories(file.parent().path());
  for (const char* text : {"", "{}", "[{\"id\": \"", "\xff\xfe"}) {
    writeFile(file, text);
    EXPECT_TRUE(journal.load().empty()) << text;
  }
}

TEST_F(JournalFileTest, AFolderThatCannotBeWrittenIsTold) {
  writeFile(home.file("data"), "a file where the folder should be");
  EXPECT_FALSE(journal.save({1}));
}

TEST_F(JournalFileTest, AnyNameSurvives) {
  const FileURL url = FileURL::fromPath("/shots/not \xff text %20.png");
  EXPECT_EQ(JournalFile::fileURL(JournalFile::coded(url)), url);
  EXPECT_FALSE(JournalFile::fileURL(QJsonValue(1)));
}

}  // namespace
}  // namespace quillmere::testing
