#include "reading/WindowScan.h"

#include <atomic>

#include "foundation/OnCancel.h"
#include "reading/PictureReading.h"

namespace quillmere::ImageOperations {

Task<Result<WindowScan, OperationError>> scanWindows(Executor& executor, std::shared_ptr<PictureReading> pictures,
                                                     FileURL url, std::optional<KnownWindows> known,
                                                     std::function<bool(const FileURL&)> isDataless) {
  auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto scanning = executor.background([pictures, url, known, isDataless, isStopped] {
    const bool isWanted = !*isStopped && !(isDataless && isDataless(url));
    if (!isWanted) return Result<WindowScan, OperationError>(OperationError::unreadable);
    return pictures->windows(url, known, *isStopped);
  });
  auto scan = co_await scanning;
  co_return scan;
}

}  // namespace quillmere::ImageOperations
