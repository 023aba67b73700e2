#include "description/StopWords.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(StopWords, AreTheListAsItStands) {
  for (const char* word : {"about", "dashboard", "login", "screenshot", "your"}) {
    EXPECT_TRUE(isStopWord(QString::fromLatin1(word))) << word;
  }
  for (const char* word : {"", "About", "nike", "about above", "ferrari"}) {
    EXPECT_FALSE(isStopWord(QString::fromLatin1(word))) << word;
  }
}

}  // namespace
}  // namespace quillmere
