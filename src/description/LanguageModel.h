#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <optional>
#include <variant>

#include "description/AnalysisError.h"
#include "description/DescribeOutcome.h"
#include "description/ForeignModelServer.h"
#include "foundation/Date.h"
#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "foundation/Task.h"

namespace quillmere {

/// One question to a model: `question`, then the picture, then `recognizedText`.
struct ModelRequest {
  QString instructions;
  QString question;
  FileURL picture;  ///< as the file has it, with no orientation of our own
  std::optional<QString> recognizedText;
  QJsonObject schema;  ///< of the answer; the model is to be shown it, and held to it
  double temperature = 0;
  int maximumResponseTokens = 0;
};

/// What a model generates, as yet uncleaned.
struct ModelAnswerFields {
  QString description;
  QString filename;
  bool operator==(const ModelAnswerFields&) const = default;
};

/// Something that went wrong at the model.
struct ModelError {
  enum class Kind {
    contextSizeExceeded,
    rateLimited,  ///< `retryAfter` may say how long
    guardrailViolation,
    refusal,
    unsupportedCapability,
    unsupportedTranscriptContent,
    unsupportedGenerationGuide,
    unsupportedLanguageOrLocale,
    concurrentRequests,
    modelNotUsable,  ///< the model itself is missing or cannot be loaded
    unreadableAnswer,
    other,
  };
  Kind kind = Kind::other;
  std::optional<Date> retryAfter = std::nullopt;
  bool operator==(const ModelError&) const = default;
};

/// Why a model gave no answer.
using ModelFailure = std::variant<ModelError, AnalysisError, AnalysisCancelled>;

/// The language model of this machine. Nothing leaves the machine. A cancelled task ends soon.
class LanguageModel {
 public:
  virtual ~LanguageModel() = default;
  /// Why it cannot be asked now; nothing if it can.
  virtual Task<std::optional<AnalysisError::Unavailability>> availability() = 0;
  virtual Task<Result<ModelAnswerFields, ModelFailure>> respond(ModelRequest request) = 0;
  /// What the last look found: the server in use where it is another person's, or one that could be used if it were
  /// allowed.
  virtual std::optional<ForeignModelServer> foreignServer() const { return std::nullopt; }
};

}  // namespace quillmere
