#pragma once

#include <QtCore/QString>
#include <optional>

namespace quillmere {

/// What a model made of a screenshot: a sentence or two, and a name for its file without an extension.
struct ScreenshotAnalysisResult {
  QString description;
  QString filename;
  bool operator==(const ScreenshotAnalysisResult&) const = default;
};

/// Makes a model's answer fit to be kept. Small models misspell the names that they read, so that words are checked
/// against `recognizedText`; and text in a picture may try to steer a model, so that nothing of the answer is trusted.
/// None where nothing usable is left.
std::optional<ScreenshotAnalysisResult> cleanedAnswer(const QString& description, const QString& filename,
                                                      const std::optional<QString>& recognizedText);

}  // namespace quillmere
