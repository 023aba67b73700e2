#include "records/UUID.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(UUIDText, IsWrittenInUpperCase) {
  EXPECT_EQ(uuidText(QUuid("{abcdef01-2345-4789-8bcd-ef0123456789}")), "ABCDEF01-2345-4789-8BCD-EF0123456789");
}

TEST(UUIDText, IsReadInEitherCase) {
  const QUuid expected("{abcdef01-2345-4789-8bcd-ef0123456789}");
  EXPECT_EQ(uuidFromText("ABCDEF01-2345-4789-8BCD-EF0123456789"), expected);
  EXPECT_EQ(uuidFromText("abcdef01-2345-4789-8bcd-ef0123456789"), expected);
  EXPECT_EQ(uuidFromText("aBcDeF01-2345-4789-8bcd-ef0123456789"), expected);
}

TEST(UUIDText, OfNothingButZerosIsAUUID) {
  EXPECT_EQ(uuidFromText("00000000-0000-0000-0000-000000000000"), QUuid());
}

TEST(UUIDText, InAnyOtherFormIsNotRead) {
  for (const char* text : {"", "ABCDEF01234547898BCDEF0123456789", "{ABCDEF01-2345-4789-8BCD-EF0123456789}",
                           "ABCDEF01-2345-4789-8BCD-EF012345678", "ABCDEF01-2345-4789-8BCD-EF01234567890",
                           "ABCDEF01-2345-4789-8BCD-EF012345678G", "ABCDEF01-2345-4789-8BCD+EF0123456789",
                           "ABCDEF0-12345-4789-8BCD-EF0123456789", " BCDEF01-2345-4789-8BCD-EF0123456789"}) {
    EXPECT_EQ(uuidFromText(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quillmere
