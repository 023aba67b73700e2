#include "detection/WindowScan.h"

#include <optional>
#include <utility>

#include "formats/ImageFile.h"
#include "formats/ImageScale.h"

namespace quillmere::ImageOperations {
namespace {

bool isWanted(const std::function<bool()>& isStopped) {
  return !(isStopped && isStopped());
}

/// `picture` and the scale that its file tells of.
Result<WindowScan, OperationError> found(ImageFile::Picture picture, const std::optional<double>& scale,
                                         const std::function<bool()>& isStopped,
                                         const std::optional<KnownWindows>& known) {
  if (!picture) return operationError(picture.reason());
  if (!isWanted(isStopped)) return OperationError::unreadable;
  QImage image = *std::move(picture);
  const auto windows = detectWindows(image, scale, known);
  return WindowScan{std::move(image), windows};
}

}  // namespace

Result<WindowScan, OperationError> scanWindowsNow(const FileURL& url, const std::function<bool()>& isStopped,
                                                  const std::optional<KnownWindows>& known) {
  if (!isWanted(isStopped)) return OperationError::unreadable;
  std::optional<double> scale;
  auto picture = ImageFile::read(url, [&scale](std::string_view bytes) { scale = imageScale(bytes); });
  return found(std::move(picture), scale, isStopped, known);
}

Result<WindowScan, OperationError> scanWindowsNow(std::string bytes, const std::function<bool()>& isStopped,
                                                  PixelMemory* memory, const std::optional<KnownWindows>& known) {
  if (!isWanted(isStopped)) return OperationError::unreadable;
  std::optional<double> scale;
  auto picture = ImageFile::read(
      std::string_view(bytes), [&scale](std::string_view all) { scale = imageScale(all); }, {}, memory);
  std::string().swap(bytes);
  return found(std::move(picture), scale, isStopped, known);
}

}  // namespace quillmere::ImageOperations
