#include "reading/PictureError.h"

#include <gtest/gtest.h>
#include <set>

#include "reading/OperationError.h"

namespace quillmere {
namespace {

TEST(PictureErrorTest, EachReasonHasWordsOfItsOwn) {
  std::set<QString> words;
  for (const auto error :
       {PictureError::unreadable, PictureError::noPicture, PictureError::damaged, PictureError::tooCostly}) {
    EXPECT_TRUE(words.insert(description(error)).second);
    EXPECT_FALSE(description(error).isEmpty());
  }
}

TEST(PictureErrorTest, OnlyWhatIsTooCostlyIsToldApartFromTheUnreadable) {
  using ImageOperations::operationError;
  using ImageOperations::OperationError;
  EXPECT_EQ(operationError(PictureError::tooCostly), OperationError::tooCostly);
  for (const auto error : {PictureError::unreadable, PictureError::noPicture, PictureError::damaged}) {
    EXPECT_EQ(operationError(error), OperationError::unreadable);
  }
  EXPECT_EQ(ImageOperations::description(OperationError::tooCostly), description(PictureError::tooCostly));
}

}  // namespace
}  // namespace quillmere
