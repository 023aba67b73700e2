#include "foundation/ByteSearch.h"

#include <gtest/gtest.h>
#include <random>

namespace quillmere {
namespace {

TEST(ByteSearch, TellsTheFirstPlaceFromWhereItIsAsked) {
  const ByteSearch search("ab", "");
  EXPECT_EQ(search.find("xxabxxab"), 2u);
  EXPECT_EQ(search.find("xxabxxab", 2), 2u);
  EXPECT_EQ(search.find("xxabxxab", 3), 6u);
  EXPECT_EQ(search.find("xxabxxab", 7), ByteSearch::kNotFound);
  EXPECT_EQ(search.find("xxabxxab", 70), ByteSearch::kNotFound);
}

TEST(ByteSearch, NothingIsFoundInLessThanWhatIsSought) {
  const ByteSearch search("abc", "abc");
  EXPECT_EQ(search.find(""), ByteSearch::kNotFound);
  EXPECT_EQ(search.find("ab"), ByteSearch::kNotFound);
  EXPECT_EQ(search.find("abc"), 0u);
}

TEST(ByteSearch, AgreesWithThePlainSearch) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const auto text = [&](size_t most, int letters) {
    std::string made(random() % (most + 1), '\0');
    for (char& letter : made)
      letter = static_cast<char>(0xFE + static_cast<int>(random() % static_cast<unsigned>(letters)));
    return made;
  };
  for (int i = 0; i < 20000; ++i) {
    const int letters = 1 + static_cast<int>(random() % 4);
    const std::string bytes = text(100, letters);
    std::string sought = "\xFE" + text(6, letters);
    if (random() % 2 == 0 && !bytes.empty()) sought = bytes.substr(random() % bytes.size(), 1 + random() % 40);
    const size_t from = random() % (bytes.size() + 2);
    ASSERT_EQ(ByteSearch(sought, text(50, letters)).find(bytes, from), std::string_view(bytes).find(sought, from));
  }
}

}  // namespace
}  // namespace quillmere
