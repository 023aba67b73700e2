#include "records/MoveJournal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::IsEmpty;

class MoveJournalTest : public ::testing::Test {
 protected:
  TemporaryFolder home;
  const FileURL file = home.file("moving.json");
  const MoveJournal journal{file};
};

TEST_F(MoveJournalTest, WhatWasSavedIsLoaded) {
  const std::vector<BegunMove> saved{
      {uuid(1), FileURL::fromPath("/shots/a.png"), FileURL::fromPath("/disk/b.png")},
      {uuid(2), FileURL::fromPath("/shots/not \xff text.png"), FileURL::fromPath("/disk/c.png")}};
  ASSERT_TRUE(journal.save(saved));
  EXPECT_EQ(journal.load(), saved);
  EXPECT_TRUE(journal.save({}));
  EXPECT_THAT(journal.load(), IsEmpty());
}

TEST_F(MoveJournalTest, WhatIsNoMoveIsLeftOut) {
  for (const char* text : {"[1, {}]", R"([{"id": "x", "from": "file:///a", "to": "file:///b"}])",
                           R"([{"id": "00000000-0000-4000-8000-100000000001", "from": "file:///a"}])"}) {
    writeFile(file, text);
    EXPECT_THAT(journal.load(), IsEmpty()) << text;
  }
}

}  // namespace
}  // namespace quillmere::testing
