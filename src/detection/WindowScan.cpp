#include "detection/WindowScan.h"
#include "formats/ImageScale.h"

namespace quillmere::ImageOperations {

Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url) {
  auto image = loadImage(url);
  if (!image) return image.reason();
  const auto windows = detectWindows(*image, imageScale(url));
  return WindowScan{*std::move(image), windows};
}

Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, FileURL url,
                                                     std::function<bool(const FileURL&)> isDataless) {
  auto scanning = executor.background([url, isDataless] {
    if (isDataless && isDataless(url)) return Result<WindowScan, OperationError>(OperationError::unreadable);
    return scanWindowsNow(url);
  });
  auto scan = co_await scanning;
  co_return scan;
}

}  // namespace quillmere::ImageOperations
