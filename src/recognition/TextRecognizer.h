#pragma once

#include <QtCore/QLocale>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <atomic>
#include <memory>
#include <optional>

namespace quillmere {

/// The engine's names of the languages to read, the likeliest first: that of the locale, and English, which stands on
/// every screen. More would cost time for each line, and guesses in scripts that are not there.
QString recognitionLanguages(const QLocale& locale);

/// Recognises text in pictures. The engine is loaded with the first picture and stays. One thread at a time, which the
/// engine does not multiply.
class TextRecognizer {
 public:
  explicit TextRecognizer(const QLocale& locale = QLocale::system());
  ~TextRecognizer();

  /// Loads the engine with its languages now, rather than with the first picture. False where there is no data of any.
  bool load();

  /// The lines of text joined with "\n", top to bottom; empty where there is none. Nothing when it was cancelled,
  /// within a tenth of a second, and when the engine cannot be loaded or fails.
  std::optional<QString> recognizeText(const QImage& image, const std::atomic<bool>& isCancelled);

 private:
  class Engine;
  QLocale locale_;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quillmere
