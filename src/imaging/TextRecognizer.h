#pragma once

#include <QtCore/QString>
#include <QtGui/QImage>
#include <atomic>
#include <memory>
#include <optional>

namespace quillmere {

/// Recognises text in pictures. Its engine is loaded with the first picture and stays. One thread at a time.
class TextRecognizer {
 public:
  TextRecognizer();
  ~TextRecognizer();

  /// The lines of text joined with "\n", top to bottom; empty where there is none, nothing when it was cancelled or
  /// failed. `scale` is in pixels per point, where it is known. Ends within a tenth of a second of being cancelled.
  std::optional<QString> recognizeText(const QImage& image, std::optional<double> scale,
                                       const std::atomic<bool>& isCancelled);

 private:
  class Engine;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quillmere
