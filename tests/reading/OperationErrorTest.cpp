#include "reading/OperationError.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;

TEST(OperationErrors, EachTellsThePersonWhatToDo) {
  const auto text = [](OperationError error) { return ImageOperations::description(error).toStdString(); };
  EXPECT_EQ(text(OperationError::unreadable),
            "The screenshot couldn’t be opened. It may have moved or expired. Choose it again from the Inbox.");
  EXPECT_EQ(text(OperationError::invalidCrop), "Choose a crop with a positive width and height inside the image.");
  EXPECT_EQ(text(OperationError::encoding),
            "The cropped image couldn’t be saved. The original hasn’t changed. Try saving again.");
  EXPECT_EQ(text(OperationError::destinationExists),
            "A file already exists with that name. Choose a different name to avoid replacing it.");
  EXPECT_EQ(text(OperationError::noScreenshotFolder), "Choose a screenshot folder in Settings, then save again.");
}

TEST(OperationErrors, AFailureOfTheSystemIsASentence) {
  const Failure failure = std::make_error_code(std::errc::no_space_on_device);
  EXPECT_EQ(ImageOperations::description(failure).toStdString(), "No space left on device.");
  EXPECT_EQ(ImageOperations::description(Failure(OperationError::encoding)),
            ImageOperations::description(OperationError::encoding));
}

TEST(OperationErrors, OnlyTheSystemSaysThatAFileIsMissing) {
  EXPECT_TRUE(ImageOperations::isFileMissing(std::make_error_code(std::errc::no_such_file_or_directory)));
  EXPECT_TRUE(ImageOperations::isFileMissing(std::error_code(ENOENT, std::generic_category())));
  EXPECT_TRUE(ImageOperations::isFileMissing(std::error_code(ENOENT, std::system_category())));
  EXPECT_FALSE(ImageOperations::isFileMissing(std::make_error_code(std::errc::permission_denied)));
  EXPECT_FALSE(ImageOperations::isFileMissing(std::make_error_code(std::errc::not_a_directory)));
  EXPECT_FALSE(ImageOperations::isFileMissing(OperationError::unreadable));
}

}  // namespace
}  // namespace quillmere
