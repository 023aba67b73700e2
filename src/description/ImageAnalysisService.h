#pragma once

#include <optional>
#include <utility>

#include "description/DescribeOutcome.h"
#include "description/LanguageModel.h"
#include "foundation/Executor.h"
#include "foundation/FileURL.h"
#include "foundation/Task.h"

namespace quillmere {

/// Asks the language model about screenshots.
class ImageAnalysisService {
 public:
  /// Both outlive this and every task that it gave.
  ImageAnalysisService(LanguageModel& model, Executor& executor) : model_(model), executor_(executor) {}

  Task<std::optional<AnalysisError::Unavailability>> availability() { return model_.availability(); }
  std::optional<ForeignModelServer> foreignServer() const { return model_.foreignServer(); }

  /// `recognizedText` helps the model, and its words are checked against it. Where that text is what the model stumbles
  /// over, it is asked once more about the picture alone.
  Task<DescribeOutcome> describe(FileURL url, std::optional<QString> recognizedText) {
    return describe(model_, executor_, std::move(url), std::move(recognizedText));
  }

 private:
  static Task<DescribeOutcome> describe(LanguageModel& model, Executor& executor, FileURL url,
                                        std::optional<QString> recognizedText);
  LanguageModel& model_;
  Executor& executor_;
};

/// What the person is told of a model's failure. Cancelled stays cancelled.
DescribeOutcome describeOutcome(const ModelFailure& failure);

}  // namespace quillmere
