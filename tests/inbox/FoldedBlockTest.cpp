#include "inbox/FoldedBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class FoldedBlockTest : public ::testing::Test {
 protected:
  FoldedBlock block(const std::vector<QString>& texts) {
    std::vector<FoldedBlock::Record> records;
    for (const QString& text : texts) {
      records.push_back({nextNumber, 0, uuid(static_cast<int>(nextNumber)), {"name", QByteArray(), text.toUtf8()}});
      ++nextNumber;
    }
    return FoldedBlock(folding, {}, {}, records);
  }
  FoldedBlock block(std::initializer_list<const char*> texts) {
    std::vector<QString> all;
    for (const char* text : texts) all.push_back(QString::fromUtf8(text));
    return block(all);
  }
  std::vector<FoldedBlock::Candidate> candidates(const FoldedBlock& block, const char* text,
                                                 const FoldedBlock::Dead& dead = {}) {
    const ByteSearch bytes(folding.fold(QString::fromUtf8(text)).bytes, block.bytes());
    SoughtText sought(bytes, folding.collator(), QString::fromUtf8(text));
    return block.find(sought, dead);
  }
  /// The entries with hits.
  static std::vector<uint32_t> hits(const std::vector<FoldedBlock::Candidate>& candidates) {
    std::vector<uint32_t> entries;
    for (const auto& candidate : candidates) {
      if (candidate.isHit) entries.push_back(candidate.entry);
    }
    return entries;
  }
  std::vector<uint32_t> finding(const FoldedBlock& block, const char* text, const FoldedBlock::Dead& dead = {}) {
    return hits(candidates(block, text, dead));
  }

  const TextFolding folding{QStringLiteral("en")};
  uint32_t nextNumber = 1;
};

TEST_F(FoldedBlockTest, TellsEachRecordOnce) {
  const FoldedBlock some = block({"one one", "two", "", "one and two", "three"});
  EXPECT_THAT(finding(some, "ONE"), ElementsAre(0, 3));
  EXPECT_THAT(finding(some, "two"), ElementsAre(1, 3));
  EXPECT_THAT(finding(some, "name"), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_THAT(finding(some, "four"), IsEmpty());
  EXPECT_THAT(finding(block(std::vector<QString>()), "one"), IsEmpty());
}

TEST_F(FoldedBlockTest, AHitLiesWithinOneText) {
  const FoldedBlock some = block({"one", "two"});
  EXPECT_THAT(finding(some, "nameone"), IsEmpty());
  EXPECT_THAT(finding(some, "onename"), IsEmpty());
}

TEST_F(FoldedBlockTest, TheDeadAreNotFound) {
  const FoldedBlock some = block({"one", "one", "one"});
  EXPECT_THAT(finding(some, "one", {false, true, false}), ElementsAre(0, 2));
}

TEST_F(FoldedBlockTest, WhatIsDoubtfulIsJudgedTheSlowWay) {
  const FoldedBlock some = block({"Straße", "Gasse", "ß", "ß and s"});
  EXPECT_THAT(finding(some, "se"), ElementsAre(1));
  EXPECT_THAT(finding(some, "strasse"), ElementsAre(0));
  EXPECT_THAT(finding(some, "s"), ElementsAre(0, 1, 3));
  EXPECT_THAT(finding(some, "ss"), ElementsAre(0, 1, 2, 3));
}

TEST_F(FoldedBlockTest, AVeryLongTextIsSearchedThoughItIsNotKept) {
  const QString text = QStringLiteral("word ").repeated(20000) + QStringLiteral("end");
  const FoldedBlock some = block({QStringLiteral("short end"), text, QStringLiteral("another end")});
  EXPECT_LT(some.bytes().size(), 100u);
  EXPECT_LT(some.memory(), 1000u);
  EXPECT_THAT(finding(some, "END"), UnorderedElementsAre(0, 1, 2));
  EXPECT_THAT(finding(some, "word end"), ElementsAre(1));
  EXPECT_THAT(finding(some, "end", {false, true, false}), ElementsAre(0, 2));
}

TEST_F(FoldedBlockTest, ATextThatGrowsPastTheLimitIsNotKeptEither) {
  const FoldedBlock some = block({QStringLiteral("ß中").repeated(12000)});
  EXPECT_TRUE(some.bytes().empty());
  EXPECT_THAT(finding(some, "中ss"), ElementsAre(0));
  EXPECT_THAT(finding(some, "中s"), IsEmpty());
}

TEST_F(FoldedBlockTest, WithoutIcusDataEverythingIsSearchedTheSlowWay) {
  SearchedTexts texts;
  texts[0] = "a text";
  const ByteSearch bytes("", "");
  SoughtText sought(bytes, nullptr, QStringLiteral("TEXT"));
  EXPECT_TRUE(sought.isIn(texts));
}

TEST_F(FoldedBlockTest, TheNextBlockTakesWhatLives) {
  const QString longText = QStringLiteral("one ").repeated(20000);
  const FoldedBlock first =
      block({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("einß"), longText, QStringLiteral("one ")});
  const FoldedBlock second(folding, first, {true, false, false, false, false},
                           {{9, 2, uuid(9), {"new", "one", QByteArray(), QByteArray()}}});
  std::vector<uint32_t> numbers;
  for (const auto& entry : second.entries()) numbers.push_back(entry.number);
  EXPECT_THAT(numbers, ElementsAre(2, 3, 4, 5, 9));
  EXPECT_EQ(second.entries().back().id, uuid(9));
  EXPECT_EQ(second.entries().back().version, 2u);
  EXPECT_THAT(finding(second, "one"), UnorderedElementsAre(2, 3, 4));
  EXPECT_THAT(finding(second, "eins"), IsEmpty());
  EXPECT_THAT(finding(second, "einss"), ElementsAre(1));
}

TEST_F(FoldedBlockTest, ALongerTextIsSoughtAmongTheCandidatesOfTheShorter) {
  const FoldedBlock some = block({"as", "ß", "ass", "has a ssh key", "b"});
  const auto shorter = candidates(some, "s");
  EXPECT_THAT(hits(shorter), ElementsAre(0, 2, 3));
  EXPECT_EQ(shorter.size(), 4u) << "ß is one: more of it may be sought";
  const ByteSearch bytes(folding.fold(QStringLiteral("ss")).bytes, some.bytes());
  SoughtText longer(bytes, folding.collator(), QStringLiteral("ss"));
  EXPECT_THAT(hits(some.find(longer, shorter, 0)), ElementsAre(1, 2, 3));
  const ByteSearch before(folding.fold(QStringLiteral("as")).bytes, some.bytes());
  SoughtText withMore(before, folding.collator(), QStringLiteral("as"));
  EXPECT_THAT(hits(some.find(withMore, shorter, 1)), ElementsAre(0, 2, 3));
}

}  // namespace
}  // namespace quillmere::testing
