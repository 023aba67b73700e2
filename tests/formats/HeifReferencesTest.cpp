#include "formats/HeifReferences.h"

#include <gtest/gtest.h>

#include "support/Images.h"

namespace quillmere {
namespace {

using testing::bigEndian32;

std::string box(std::string_view type, const std::string& content) {
  return bigEndian32(static_cast<uint32_t>(8 + content.size())) + std::string(type) + content;
}
std::string short16(uint32_t number) {
  return bigEndian32(number).substr(2);
}
std::string reference(std::string_view type, uint32_t from, const std::vector<uint32_t>& to) {
  std::string content = short16(from) + short16(static_cast<uint32_t>(to.size()));
  for (const uint32_t item : to) content += short16(item);
  return box(type, content);
}
std::string item(uint32_t number, const std::string& kind) {
  return box("infe", std::string("\2\0\0\0", 4) + short16(number) + short16(0) + kind + '\0');
}
/// Items 1 to 20 are pictures.
std::string file(const std::string& references, const std::string& more = {}) {
  const std::string version(4, '\0');
  std::string items = version + short16(20);
  for (uint32_t number = 1; number <= 20; ++number) items += item(number, "hvc1");
  return box("ftyp", "heic") +
         box("meta", version + box("hdlr", "x") + box("iinf", items + more) + box("iref", version + references)) +
         box("mdat", "data");
}

TEST(HeifReferencesTest, OfOrdinaryPicturesAreSound) {
  EXPECT_EQ(heifReferences({}), HeifReferences::sound);
  EXPECT_EQ(heifReferences(file({})), HeifReferences::sound);
  const std::string tiles = reference("dimg", 9, {1, 2, 3, 4});
  EXPECT_EQ(heifReferences(file(tiles)), HeifReferences::sound);
  EXPECT_EQ(heifReferences(file(tiles + reference("thmb", 10, {9}) + reference("cdsc", 11, {9}))),
            HeifReferences::sound);
  EXPECT_EQ(heifReferences(file(tiles + reference("auxl", 12, {9}) + reference("prem", 9, {12}))),
            HeifReferences::sound);
  EXPECT_EQ(heifReferences(file(reference("dimg", 9, std::vector<uint32_t>(2'048, 1)))), HeifReferences::sound);
}

TEST(HeifReferencesTest, InACircleAreEndless) {
  EXPECT_EQ(heifReferences(file(reference("dimg", 1, {1}))), HeifReferences::endless);
  const std::string three = reference("dimg", 1, {2}) + reference("dimg", 2, {3}) + reference("dimg", 3, {1});
  EXPECT_EQ(heifReferences(file(three)), HeifReferences::endless);
  EXPECT_EQ(heifReferences(file(reference("auxl", 1, {1}))), HeifReferences::endless);
  EXPECT_EQ(heifReferences(file(reference("auxl", 1, {2}) + reference("dimg", 1, {2}))), HeifReferences::endless);
}

TEST(HeifReferencesTest, ToTooManyPartsAreCostly) {
  EXPECT_EQ(heifReferences(file(reference("dimg", 9, std::vector<uint32_t>(2'049, 1)))), HeifReferences::costly);
  std::string levels;
  for (uint32_t i = 1; i < 8; ++i) levels += reference("dimg", i, std::vector<uint32_t>(100, i + 1));
  EXPECT_EQ(heifReferences(file(levels)), HeifReferences::costly);
}

TEST(HeifReferencesTest, ToWhatIsNoPictureAreEndless) {
  for (const char* kind : {"Exif", "mime", "hvc2", "????"}) {
    EXPECT_EQ(heifReferences(file(reference("dimg", 1, {2, 30}), item(30, kind))), HeifReferences::endless) << kind;
    EXPECT_EQ(heifReferences(file(reference("cdsc", 30, {1}), item(30, kind))), HeifReferences::sound) << kind;
  }
  for (const char* kind : {"hvc1", "av01", "grid", "iden", "iovl"}) {
    EXPECT_EQ(heifReferences(file(reference("dimg", 1, {2, 30}), item(30, kind))), HeifReferences::sound) << kind;
  }
  EXPECT_EQ(heifReferences(file(reference("dimg", 1, {2, 31}))), HeifReferences::endless) << "there is none";
}

TEST(HeifReferencesTest, AreReadWithLongNumbersToo) {
  const auto long32 = [](uint32_t number) { return bigEndian32(number); };
  const std::string version(4, '\0');
  const std::string longVersion("\3\0\0\0", 4);
  const auto with = [&](uint32_t part) {
    const std::string kinds = box("infe", longVersion + long32(70'000) + short16(0) + "hvc1");
    const std::string references = box("dimg", long32(1) + short16(1) + long32(part));
    const std::string one("\1\0\0\0", 4);
    return box("meta", version + box("iinf", one + long32(1) + kinds) + box("iref", one + references));
  };
  EXPECT_EQ(heifReferences(with(70'000)), HeifReferences::sound);
  EXPECT_EQ(heifReferences(with(4'464)), HeifReferences::endless) << "the lower half alone";
}

TEST(HeifReferencesTest, StandInADescriptionOfSoManyBytes) {
  EXPECT_EQ(heifDescriptionBytes({}), 0);
  const std::string described = box("ftyp", "heic") + box("meta", std::string(1000, 'm')) + box("mdat", "data");
  EXPECT_EQ(heifDescriptionBytes(described), 1000);
  EXPECT_EQ(heifDescriptionBytes(described + box("meta", "m")), 1001);
  EXPECT_EQ(heifDescriptionBytes(described.substr(0, 500)), 0) << "which is cut off";
}

TEST(HeifReferencesTest, ThatAreCutOffAreNotSound) {
  const std::string whole = reference("dimg", 9, {1, 2});
  for (size_t length = 1; length < whole.size(); ++length) {
    EXPECT_EQ(heifReferences(file(whole.substr(0, length))), HeifReferences::endless) << length;
  }
}

}  // namespace
}  // namespace quillmere
