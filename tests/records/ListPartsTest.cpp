#include "records/ListParts.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::encoded;
using testing::envelope;
using testing::fullItem;
using testing::recordJson;

class ListPartsTest : public ::testing::Test {
 protected:
  /// Long enough to be worth two threads.
  static constexpr int kMany = 2400;

  static std::vector<ScreenshotItem> many() {
    std::vector<ScreenshotItem> items;
    for (int number = 0; number < kMany; ++number) {
      items.push_back(fullItem(number));
      // What stands between records, and its parts, is no border inside of a text.
      items.back().recognizedText = QByteArray(R"(},{"id":" \"},{\"id\":\" )").repeated(60 + number % 7);
    }
    return items;
  }
  static std::string joined(const std::vector<ScreenshotItem>& items) {
    std::string records;
    for (const ScreenshotItem& item : items) records += (records.empty() ? "" : ",") + encoded(item);
    return records;
  }
  std::optional<std::vector<ScreenshotItem>> read(const std::string& bytes) {
    testing::writeFile(file, bytes);
    return readInParts(file);
  }

  const testing::TemporaryFolder folder;
  const FileURL file = folder.file("screenshots.json");
};

TEST_F(ListPartsTest, TwoHalvesAreTheWholeList) {
  const auto items = many();
  EXPECT_TRUE(read(envelope(joined(items))) == items);
}

TEST_F(ListPartsTest, HalvesMayBeOfAnyLength) {
  auto items = many();
  // One record is longer than all others together, at the beginning or at the end.
  for (const size_t place : {size_t(0), items.size() - 1}) {
    auto uneven = items;
    uneven[place].recognizedText = QByteArray("long ").repeated(2'000'000);
    EXPECT_TRUE(read(envelope(joined(uneven))).value_or(uneven) == uneven) << place;
  }
}

TEST_F(ListPartsTest, AShortListIsReadAsOne) {
  EXPECT_FALSE(read(envelope(encoded(fullItem(1)) + "," + encoded(fullItem(2)))));
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(readInParts(folder.file("absent.json")));
  EXPECT_FALSE(readInParts(folder.url()));
}

TEST_F(ListPartsTest, AListThatIsNotAsThisVersionWritesItIsReadAsOne) {
  const std::string records = joined(many());
  const std::string inFront = recordJson(R"(,"expiresAt":"a text")") + ",";
  const std::string behind = "," + recordJson(R"(,"expiresAt":"a text")");
  const auto isLeft = [&](const std::string& bytes) { return !read(bytes); };
  EXPECT_TRUE(isLeft(envelope(records, 2))) << "of a newer version";
  EXPECT_TRUE(isLeft("[" + records + "]")) << "of the oldest form";
  EXPECT_TRUE(isLeft(envelope(records) + "\n"));
  EXPECT_TRUE(isLeft(envelope(inFront + records))) << "a record that cannot be read, in the first half";
  EXPECT_TRUE(isLeft(envelope(records + behind))) << "and in the second";
  EXPECT_TRUE(isLeft(envelope(records).substr(0, records.size() / 4 * 3))) << "cut off";
  EXPECT_TRUE(isLeft(envelope(records + ",")));
  EXPECT_TRUE(isLeft(std::string(5'000'000, ' ')));
  std::string withNul = envelope(records);
  withNul[withNul.size() / 4] = '\0';
  EXPECT_TRUE(isLeft(withNul));
}

TEST_F(ListPartsTest, ABorderInsideOfARecordIsNone) {
  // A newer version may keep lists in its records.
  const std::string nested = recordJson(R"(,"parts":[{"id":"a"},{"id":"b"}])");
  std::string records = nested;
  while (records.size() < 5'000'000) records += "," + nested;
  const auto items = read(envelope(records));
  EXPECT_TRUE(!items || items->size() * (nested.size() + 1) == records.size() + 1);
}

}  // namespace
}  // namespace quillmere
