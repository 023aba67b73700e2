#include "update/library/FeedSignature.h"

#include <gtest/gtest.h>

#include "update/library/Maker.h"

namespace quillmere {
namespace {

TEST(FeedSignature, IsGenuineForWhatTheMakerSigned) {
  const testing::Maker maker;
  for (const QByteArray& message : {QByteArray("x"), QByteArray(), QByteArray(100000, 'y')}) {
    EXPECT_TRUE(maker.check().isGenuine(message, maker.sign(message)));
  }
}

TEST(FeedSignature, OneBitAnywhereIsEnoughToRefuse) {
  const testing::Maker maker;
  const QByteArray message("the package"), signature = maker.sign(message);
  const auto flipped = [](QByteArray bytes, qsizetype bit) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
    return bytes;
  };
  for (qsizetype bit = 0; bit < message.size() * 8; ++bit) {
    EXPECT_FALSE(maker.check().isGenuine(flipped(message, bit), signature)) << bit;
  }
  for (qsizetype bit = 0; bit < signature.size() * 8; ++bit) {
    EXPECT_FALSE(maker.check().isGenuine(message, flipped(signature, bit))) << bit;
  }
  EXPECT_FALSE(FeedSignature(flipped(maker.publicKey(), 9)).isGenuine(message, signature));
}

TEST(FeedSignature, KeysAndSignaturesOfAnotherLengthAreRefused) {
  const testing::Maker maker;
  const QByteArray message("the package"), signature = maker.sign(message);
  for (const QByteArray& other : {QByteArray(), signature.left(63), signature + '\0', QByteArray(64, '\0')}) {
    EXPECT_FALSE(maker.check().isGenuine(message, other));
  }
  for (const QByteArray& key : {QByteArray(), maker.publicKey().left(31), maker.publicKey() + 'x'}) {
    EXPECT_FALSE(FeedSignature(key).isGenuine(message, signature));
  }
}

/// The first example of RFC 8032: what others sign is read as they mean it.
TEST(FeedSignature, ReadsWhatOtherProgramsSign) {
  const auto key = QByteArray::fromHex("d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a");
  const auto signature = QByteArray::fromHex(
      "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc61e39701cf9b46bd25bf5f0595bbe24"
      "655141438e7a100b");
  EXPECT_TRUE(FeedSignature(key).isGenuine(QByteArray(), signature));
}

}  // namespace
}  // namespace quillmere
