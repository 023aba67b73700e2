#include "inbox/SearchRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SearchRunTest : public ::testing::Test {
 protected:
  void add(std::initializer_list<std::pair<uint32_t, const char*>> texts, FoldedBlock::Dead dead = {}) {
    std::vector<FoldedBlock::Record> records;
    for (const auto& [number, text] : texts) {
      records.push_back({number, 0, uuid(static_cast<int>(number)), {QByteArray(text)}});
    }
    parts.push_back({std::make_shared<const FoldedBlock>(folding, FoldedBlock(), FoldedBlock::Dead(), records),
                     dead.empty() ? nullptr : std::make_shared<const FoldedBlock::Dead>(std::move(dead))});
  }
  std::shared_ptr<SearchRun> run(const char* text, const TextFolding* by = nullptr) {
    return std::make_shared<SearchRun>(parts, by ? *by : folding, QString::fromUtf8(text));
  }
  std::vector<uint32_t> finding(const char* text) {
    const auto made = run(text);
    made->help();
    return made->takeHits().numbers;
  }

  const TextFolding folding{QStringLiteral("en")};
  std::vector<SearchRun::Part> parts;
};

TEST_F(SearchRunTest, GathersTheHitsOfAllPartsNewestFirst) {
  add({{1, "one"}, {3, "one two"}});
  add({{4, "two"}, {5, "one"}}, {false, true});
  add({{2, "one"}, {9, "ONE"}});
  EXPECT_THAT(finding("one"), ElementsAre(9, 3, 2, 1));
  EXPECT_THAT(finding("two"), ElementsAre(4, 3));
  const auto made = run("two");
  made->help();
  EXPECT_THAT(made->takeHits().ids, ElementsAre(uuid(4), uuid(3)));
}

TEST_F(SearchRunTest, WithNothingToSearchItIsFinished) {
  const auto made = run("one");
  EXPECT_TRUE(made->isFinished());
  EXPECT_THAT(made->takeHits().ids, IsEmpty());
}

TEST_F(SearchRunTest, ThoseWhoHelpAtOnceFindEachRecordOnce) {
  std::vector<uint32_t> numbers;
  for (uint32_t number = 0; number < 200; ++number) {
    add({{number, number % 2 == 0 ? "one" : "two"}});
    if (number % 2 == 0) numbers.insert(numbers.begin(), number);
  }
  for (int round = 0; round < 20; ++round) {
    const auto made = run("one");
    std::thread other([made] { made->help(); });
    made->help();
    other.join();
    ASSERT_TRUE(made->isFinished());
    ASSERT_EQ(made->takeHits().numbers, numbers);
  }
}

TEST_F(SearchRunTest, CancelledItEndsWithoutSearching) {
  add({{1, "one"}});
  const auto made = run("one");
  made->cancel();
  made->help();
  EXPECT_TRUE(made->isFinished());
  EXPECT_THAT(made->takeHits().ids, IsEmpty());
}

TEST_F(SearchRunTest, ALongerTextNarrowsTheShorter) {
  add({{1, "on"}, {2, "one"}});
  add({{3, "tone"}, {4, "ß"}, {5, "none"}});
  const auto shorter = run("on");
  shorter->help();
  // What is not a candidate is not looked at, which shows by a run that found less.
  parts[1].dead = std::make_shared<const FoldedBlock::Dead>(FoldedBlock::Dead{false, false, true});
  const auto fewer = run("on");
  fewer->help();
  for (const auto& [before, hits] : {std::pair(shorter, std::vector<uint32_t>{5, 3, 2}), {fewer, {3, 2}}}) {
    parts[1].dead = nullptr;
    const auto longer = run("one");
    longer->narrow(before);
    EXPECT_TRUE(longer->isNarrowed());
    longer->help();
    EXPECT_EQ(longer->takeHits().numbers, hits);
  }
}

TEST_F(SearchRunTest, NarrowingKeepsWhatTheShorterOnlyHadInPart) {
  add({{1, "ß"}, {2, "s"}, {3, "Gasse"}});
  const auto shorter = run("s");
  shorter->help();
  const auto longer = run("ss");
  longer->narrow(shorter);
  ASSERT_TRUE(longer->isNarrowed());
  longer->help();
  EXPECT_THAT(shorter->takeHits().numbers, ElementsAre(3, 2));
  EXPECT_THAT(longer->takeHits().numbers, ElementsAre(3, 1));
}

TEST_F(SearchRunTest, AnotherTextNarrowsNothing) {
  add({{1, "one"}, {2, "two"}});
  const auto first = run("on");
  first->help();
  const auto second = run("two");
  second->narrow(first);
  EXPECT_FALSE(second->isNarrowed());
  second->help();
  EXPECT_THAT(second->takeHits().numbers, ElementsAre(2));
}

/// In Czech "ch" is a letter of its own.
TEST_F(SearchRunTest, ALetterThatBecomesAnotherNarrowsNothing) {
  const TextFolding czech(QStringLiteral("cs"));
  const std::vector<FoldedBlock::Record> records{{1, 0, uuid(1), {QByteArray("chata")}},
                                                 {2, 0, uuid(2), {QByteArray("cena")}}};
  parts = {{std::make_shared<const FoldedBlock>(czech, FoldedBlock(), FoldedBlock::Dead(), records), nullptr}};
  const auto shorter = run("c", &czech);
  shorter->help();
  const auto longer = run("ch", &czech);
  longer->narrow(shorter);
  EXPECT_FALSE(longer->isNarrowed());
  longer->help();
  EXPECT_THAT(shorter->takeHits().numbers, ElementsAre(2));
  EXPECT_THAT(longer->takeHits().numbers, ElementsAre(1));
}

}  // namespace
}  // namespace quillmere::testing
