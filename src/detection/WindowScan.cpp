#include "detection/WindowScan.h"

#include <atomic>
#include <memory>

#include "formats/ImageFile.h"
#include "formats/ImageScale.h"
#include "foundation/OnCancel.h"

namespace quillmere::ImageOperations {

Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped) {
  auto file = ImageFile::bytesOf(url);
  if (!file || (isStopped && isStopped())) return OperationError::unreadable;
  QImage image = ImageFile::picture(std::string_view(*file));
  if (image.isNull() || (isStopped && isStopped())) return OperationError::unreadable;
  const auto scale = imageScale(std::string_view(*file));
  // The search takes memory of its own.
  file.reset();
  const auto windows = detectWindows(image, scale);
  return WindowScan{std::move(image), windows};
}

Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, FileURL url,
                                                     std::function<bool(const FileURL&)> isDataless) {
  auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto scanning = executor.background([url, isDataless, isStopped] {
    const bool isWanted = !*isStopped && !(isDataless && isDataless(url));
    if (!isWanted) return Result<WindowScan, OperationError>(OperationError::unreadable);
    return scanWindowsNow(url, [&] { return isStopped->load(); });
  });
  auto scan = co_await scanning;
  co_return scan;
}

}  // namespace quillmere::ImageOperations
