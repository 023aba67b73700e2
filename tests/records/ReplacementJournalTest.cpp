#include "records/ReplacementJournal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <filesystem>
#include <thread>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"
#include "support/WithoutStandardInput.h"

namespace quillmere::testing {
namespace {

using ::testing::IsEmpty;

class ReplacementJournalTest : public ::testing::Test {
 protected:
  static Replacement replacement(int number, const std::string& name) {
    return {uuid(number), FileURL::fromPath("/shots/" + name), FileURL::fromPath("/shots/.new " + name),
            uint64_t{0xfedcba9876543210}};
  }
  TemporaryFolder home;
  const FileURL file = home.file("data").appending("replacing.json");
  const ReplacementJournal journal{file};
};

TEST_F(ReplacementJournalTest, WhatWasSavedIsLoaded) {
  const std::vector<Replacement> saved{replacement(1, "a.png"), replacement(2, "not \xff text.png")};
  ASSERT_TRUE(journal.save(saved));
  EXPECT_EQ(journal.load(), saved);
  EXPECT_THAT(namesIn(file.parent()), ::testing::ElementsAre("replacing.json"));
}

TEST_F(ReplacementJournalTest, WithoutStandardInputItIsSavedAsEver) {
  const WithoutStandardInput none;
  const std::vector<Replacement> saved{replacement(1, "a.png")};
  EXPECT_TRUE(journal.save(saved));
  EXPECT_EQ(journal.load(), saved);
}

TEST_F(ReplacementJournalTest, OneComesAndGoesBesideTheOthers) {
  ReplacementJournal changing{file};
  const Replacement one = replacement(1, "a.png");
  const Replacement other = replacement(2, "b.png");
  EXPECT_TRUE(changing.add(one));
  EXPECT_TRUE(changing.add(other));
  EXPECT_EQ(journal.load(), (std::vector{one, other}));
  EXPECT_TRUE(changing.remove({one}));
  EXPECT_EQ(journal.load(), std::vector{other});
}

TEST_F(ReplacementJournalTest, NothingIsLostWhereSeveralThreadsChangeIt) {
  ReplacementJournal changing{file};
  std::vector<std::thread> threads;
  for (int number = 0; number < 8; ++number) {
    threads.emplace_back([&, number] { EXPECT_TRUE(changing.add(replacement(number, "a.png"))); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(journal.load().size(), threads.size());
}

TEST_F(ReplacementJournalTest, NoneLeavesNoFile) {
  ASSERT_TRUE(journal.save({replacement(1, "a.png")}));
  EXPECT_TRUE(journal.save({}));
  EXPECT_FALSE(fileExists(file));
  EXPECT_TRUE(journal.save({})) << "there is none already";
  EXPECT_THAT(journal.load(), IsEmpty());
}

TEST_F(ReplacementJournalTest, WhatIsNoJournalHasNoEntries) {
  std::filesystem::create_directories(file.parent().path());
  for (const char* text : {"", "{}", "[1, {}, {\"id\": \"x\"}]", "[{\"id\": \"", "\xff\xfe"}) {
    writeFile(file, text);
    EXPECT_THAT(journal.load(), IsEmpty()) << text;
  }
}

TEST_F(ReplacementJournalTest, WhereTheNewFileCannotBeOpenedTheOldOneStaysAndThatIsTold) {
  const std::vector<Replacement> saved{replacement(1, "a.png")};
  ASSERT_TRUE(journal.save(saved));
  const std::string inTheWay = file.path() + ".saving";
  std::filesystem::create_directories(inTheWay + "/folder");
  EXPECT_FALSE(journal.save({replacement(2, "b.png")}));
  EXPECT_EQ(journal.load(), saved);
  std::filesystem::remove_all(inTheWay);
  EXPECT_TRUE(journal.save({replacement(2, "b.png")}));
}

TEST_F(ReplacementJournalTest, AFileThatCannotBeRemovedIsTold) {
  std::filesystem::create_directories(file.path());
  EXPECT_FALSE(journal.save({}));
}

TEST_F(ReplacementJournalTest, AFolderThatCannotBeWrittenIsTold) {
  writeFile(home.file("data"), "a file where the folder should be");
  EXPECT_FALSE(journal.save({replacement(1, "a.png")}));
}

}  // namespace
}  // namespace quillmere::testing
