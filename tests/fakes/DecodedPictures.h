#pragma once

#include <memory>
#include <mutex>

#include "reading/PictureReading.h"
#include "recognition/TextRecognizer.h"

namespace quillmere::testing {

/// Pictures read inside the test's own process.
class DecodedPictures final : public PictureReading {
 public:
  std::optional<PictureHead> head(const FileURL& url) override;
  std::optional<PictureError> failureOf(const FileURL& url) override;
  Picture picture(const FileURL& url, const Stop& isStopped) override;
  Picture thumbnail(const FileURL& url, int maxPixels, const Stop& isStopped) override;
  Picture thumbnail(std::string_view bytes, int maxPixels) override;
  Result<ImageOperations::WindowScan, ImageOperations::OperationError> windows(const FileURL& url,
                                                                               const std::optional<KnownWindows>& known,
                                                                               const Stop& isStopped) override;
  std::optional<KnownWindows> knownWindows(const FileURL& url, const std::vector<WindowStack>& states, Date closedAt,
                                           const Stop& isStopped) override;
  std::optional<QString> text(const FileURL& url, const Stop& isStopped) override;
  Result<QByteArray, ImageOperations::OperationError> encoded(const QImage& image, PictureFormat format) override;

 private:
  /// As the screen wants it.
  static Picture forScreen(Picture picture);

  std::mutex recognizing_;
  TextRecognizer recognizer_;
};

inline std::shared_ptr<PictureReading> decodedPictures() {
  return std::make_shared<DecodedPictures>();
}

}  // namespace quillmere::testing
