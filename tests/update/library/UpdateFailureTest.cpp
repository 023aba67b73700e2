#include "update/library/UpdateFailure.h"

#include <gtest/gtest.h>
#include <set>

namespace quillmere {
namespace {

TEST(UpdateFailure, EachIsToldInItsOwnPlainWords) {
  std::set<QString> words;
  constexpr int kCount = static_cast<int>(UpdateFailure::notSingleFile) + 1;
  for (int i = 0; i < kCount; ++i) words.insert(wordsFor(static_cast<UpdateFailure>(i)));
  EXPECT_EQ(words.size(), static_cast<size_t>(kCount));
  EXPECT_FALSE(words.contains(QString()));
  for (const QString& text : words) EXPECT_TRUE(text.endsWith(QLatin1Char('.'))) << text.toStdString();
}

}  // namespace
}  // namespace quillmere
