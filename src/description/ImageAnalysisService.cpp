#include "description/ImageAnalysisService.h"

#include "description/ModelQuestion.h"
#include "foundation/Interruptible.h"

namespace quillmere {
namespace {

using Answer = Result<ModelAnswerFields, ModelFailure>;

std::optional<QString> trimmed(const std::optional<QString>& text) {
  const QString rest = text.value_or(QString()).trimmed();
  return rest.isEmpty() ? std::nullopt : std::optional(rest);
}

AnalysisError analysisError(const ModelError& error) {
  using Kind = ModelError::Kind;
  switch (error.kind) {
    case Kind::contextSizeExceeded:
      return {.kind = AnalysisError::Kind::tooMuchContent};
    case Kind::rateLimited:
      return AnalysisError::busy(error.retryAfter);
    case Kind::guardrailViolation:
    case Kind::refusal:
      return {.kind = AnalysisError::Kind::contentBlocked};
    case Kind::unsupportedCapability:
    case Kind::unsupportedTranscriptContent:
    case Kind::unsupportedGenerationGuide:
      return AnalysisError::other(false);
    case Kind::unsupportedLanguageOrLocale:
      return {.kind = AnalysisError::Kind::unsupportedLanguage};
    case Kind::concurrentRequests:
      return AnalysisError::busy(std::nullopt);
    case Kind::modelNotUsable:
      return AnalysisError::unavailable(AnalysisError::Unavailability::modelNotReady);
    case Kind::unreadableAnswer:
      return {.kind = AnalysisError::Kind::invalidResponse};
    case Kind::other:
      return AnalysisError::other(true);
  }
  return AnalysisError::other(true);
}

/// Whether the text beside the picture may be what was too long or was taken for harmful.
bool mayBeForTheText(const ModelFailure& failure) {
  const auto* error = std::get_if<ModelError>(&failure);
  return error &&
         (error->kind == ModelError::Kind::contextSizeExceeded || error->kind == ModelError::Kind::guardrailViolation);
}

DescribeOutcome outcomeOf(const ModelAnswerFields& fields, const std::optional<QString>& text) {
  if (const auto result = cleanedAnswer(fields.description, fields.filename, text)) return *result;
  return AnalysisError{.kind = AnalysisError::Kind::invalidResponse};
}

}  // namespace

DescribeOutcome describeOutcome(const ModelFailure& failure) {
  if (const auto* error = std::get_if<ModelError>(&failure)) return analysisError(*error);
  if (const auto* error = std::get_if<AnalysisError>(&failure)) return *error;
  return AnalysisCancelled();
}

Task<DescribeOutcome> ImageAnalysisService::describe(LanguageModel& model, Executor& executor, FileURL url,
                                                     std::optional<QString> recognizedText) {
  auto looking = interruptible(model.availability());
  const auto unavailability = co_await looking;
  if (co_await isCancelled) co_return AnalysisCancelled();
  if (unavailability) co_return AnalysisError::unavailable(*unavailability);

  const auto text = trimmed(recognizedText);
  auto asking = interruptible(model.respond(ModelQuestion::request(url, text)));
  Answer answer = co_await asking;
  if (co_await isCancelled) co_return AnalysisCancelled();
  if (!answer && text && mayBeForTheText(answer.reason())) {
    auto askingAgain = interruptible(model.respond(ModelQuestion::request(url, std::nullopt)));
    answer = co_await askingAgain;
    if (co_await isCancelled) co_return AnalysisCancelled();
  }
  if (!answer) co_return describeOutcome(answer.reason());

  // A long text takes a while to check against.
  auto cleaning = executor.background([fields = answer.value(), text] { return outcomeOf(fields, text); });
  DescribeOutcome outcome = co_await cleaning;
  if (co_await isCancelled) co_return AnalysisCancelled();
  co_return outcome;
}

}  // namespace quillmere
