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
std::string file(const std::string& references) {
  const std::string version(4, '\0');
  return box("ftyp", "heic") + box("meta", version + box("hdlr", "x") + box("iref", version + references)) +
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

TEST(HeifReferencesTest, ThatAreCutOffAreNotSound) {
  const std::string whole = reference("dimg", 9, {1, 2});
  for (size_t length = 1; length < whole.size(); ++length) {
    EXPECT_EQ(heifReferences(file(whole.substr(0, length))), HeifReferences::endless) << length;
  }
}

}  // namespace
}  // namespace quillmere
