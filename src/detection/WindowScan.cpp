#include "detection/WindowScan.h"

#include <utility>

#include "formats/ImageFile.h"
#include "formats/ImageScale.h"

namespace quillmere::ImageOperations {

Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped) {
  auto file = ImageFile::bytesOf(url);
  if (!file || (isStopped && isStopped())) return OperationError::unreadable;
  return scanWindowsNow(*std::move(file), isStopped);
}

Result<WindowScan, OperationError> scanWindowsNow(std::string bytes, const std::function<bool()>& isStopped) {
  QImage image = ImageFile::picture(std::string_view(bytes));
  if (image.isNull() || (isStopped && isStopped())) return OperationError::unreadable;
  const auto scale = imageScale(std::string_view(bytes));
  std::string().swap(bytes);
  const auto windows = detectWindows(image, scale);
  return WindowScan{std::move(image), windows};
}

}  // namespace quillmere::ImageOperations
