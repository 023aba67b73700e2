#pragma once

#include <QtCore/QString>
#include <optional>

#include "description/AnalysisError.h"
#include "description/DescribeOutcome.h"
#include "description/ForeignModelServer.h"
#include "foundation/FileURL.h"
#include "foundation/Task.h"

namespace quillmere {

/// Recognises text and asks the model of this machine. Each task may be cancelled; it then ends soon, without a result.
/// Nothing leaves the machine.
class ScreenshotAnalyzing {
 public:
  virtual ~ScreenshotAnalyzing() = default;
  /// Why no description can be made now; nothing if one can.
  virtual Task<std::optional<AnalysisError::Unavailability>> availability() = 0;
  /// `text` is what was recognised in the picture.
  virtual Task<DescribeOutcome> describe(FileURL url, std::optional<QString> text) = 0;
  /// The lines of text from top to bottom, empty where there is none; nothing when it was cancelled or failed.
  virtual Task<std::optional<QString>> recognizeText(FileURL url) = 0;
  /// As `LanguageModel` tells it.
  virtual std::optional<ForeignModelServer> foreignServer() const { return std::nullopt; }
};

}  // namespace quillmere
