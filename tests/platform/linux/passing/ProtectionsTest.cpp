#include "platform/linux/passing/Protections.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(Protections, AreNamedInOneLine) {
  EXPECT_EQ(Protections::names(0), "");
  EXPECT_EQ(Protections::names(Protections::landlock), "landlock");
  EXPECT_EQ(Protections::names(Protections::namespaces | Protections::emptyRoot), "namespaces, an empty root");
}

}  // namespace
}  // namespace quillmere
