#include "detection/WindowScan.h"

#include <atomic>
#include <memory>

#include "formats/ImageFile.h"
#include "formats/ImageScale.h"
#include "foundation/OnCancel.h"

namespace quillmere::ImageOperations {

Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped) {
  if (isStopped && isStopped()) return OperationError::unreadable;
  std::optional<double> scale;
  auto picture = ImageFile::read(url, [&scale](std::string_view bytes) { scale = imageScale(bytes); });
  if (!picture) return operationError(picture.reason());
  if (isStopped && isStopped()) return OperationError::unreadable;
  QImage image = *std::move(picture);
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
