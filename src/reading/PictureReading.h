#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtGui/QImage>
#include <atomic>
#include <optional>
#include <string_view>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "reading/OperationError.h"
#include "reading/PictureError.h"
#include "reading/WindowScan.h"
#include "reading/WindowStack.h"
#include "records/PictureFormat.h"

namespace quillmere {

/// What a picture's header alone tells.
struct PictureHead {
  PictureFormat format;
  QSize size;  ///< upright, in pixels
  bool operator==(const PictureHead&) const = default;
};

/// Reads picture files and makes some. Every call waits until it is done and is made on other threads than the main
/// one, several at a time. What is stopped ends soon, and what it gives is worth nothing.
class PictureReading {
 public:
  using Stop = std::atomic<bool>;
  /// An image that is not null, or why there is none.
  using Picture = Result<QImage, PictureError>;
  virtual ~PictureReading() = default;

  virtual std::optional<PictureHead> head(const FileURL& url) = 0;
  /// Why the file is no whole picture, with its format’s end and decoded without error; none where it is, or where
  /// nobody can tell.
  virtual std::optional<PictureError> failureOf(const FileURL& url) = 0;
  /// The upright picture at full size.
  virtual Picture picture(const FileURL& url, const Stop& isStopped) = 0;
  /// The upright picture in the screen's colours, made small enough that neither side is above `maxPixels`; never
  /// enlarged.
  virtual Picture thumbnail(const FileURL& url, int maxPixels, const Stop& isStopped) = 0;
  /// The same of a file that was read already.
  virtual Picture thumbnail(std::string_view bytes, int maxPixels) = 0;
  /// The picture with the windows in it: those that are known, if they are so of these pixels.
  virtual Result<ImageOperations::WindowScan, ImageOperations::OperationError> windows(
      const FileURL& url, const std::optional<KnownWindows>& known, const Stop& isStopped) = 0;
  /// Which windows the picture shows, by what the window system told and when the file was complete. None where that is
  /// not sure.
  virtual std::optional<KnownWindows> knownWindows(const FileURL& url, const std::vector<WindowStack>& states,
                                                   Date closedAt, const Stop& isStopped) = 0;
  /// The lines of text joined with "\n", top to bottom; empty where there is none. Nothing where it cannot be read.
  virtual std::optional<QString> text(const FileURL& url, const Stop& isStopped) = 0;
  /// The picture alone with its colour space: no resolution, text or other data of its source. Fails as encoding.
  virtual Result<QByteArray, ImageOperations::OperationError> encoded(const QImage& image, PictureFormat format) = 0;

  std::optional<QSize> pixelSize(const FileURL& url) {
    const auto found = head(url);
    return found ? std::optional(found->size) : std::nullopt;
  }
};

}  // namespace quillmere
