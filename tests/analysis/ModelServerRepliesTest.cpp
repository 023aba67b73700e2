#include "analysis/ModelServerReplies.h"

#include "analysis/ModelServerFixture.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;
using testing::failureOf;

constexpr Date kNow{800000000};

HttpReply reply(int status, const QByteArray& body) {
  HttpReply reply;
  reply.status = status;
  reply.body = body;
  return reply;
}
HttpReply saying(int status, const QByteArray& words) {
  return reply(status, "{\"error\": {\"message\": \"" + words + "\"}}");
}
std::string errorText(const QByteArray& body) {
  return ModelServerReplies::errorText(ModelServerReplies::object(reply(400, body))).toStdString();
}

TEST(ModelServerReplies, AnErrorHasItsWordsInEitherForm) {
  EXPECT_EQ(errorText(R"({"error": "no such model"})"), "no such model");
  EXPECT_EQ(errorText(R"({"error": {"message": "no such model", "code": 404}})"), "no such model");
  for (const char* other : {"", "[]", "<html>", "{}", R"({"error": 7})", R"({"error": {"code": 404}})"}) {
    EXPECT_EQ(errorText(other), "") << other;
  }
}

TEST(ModelServerReplies, OnlyAnUnavailableServerIsLoading) {
  EXPECT_TRUE(ModelServerReplies::isLoading(reply(503, R"({"error": {"type": "unavailable_error"}})")));
  EXPECT_TRUE(ModelServerReplies::isLoading(saying(503, "Loading model")));
  EXPECT_FALSE(ModelServerReplies::isLoading(saying(503, "busy")));
  EXPECT_FALSE(ModelServerReplies::isLoading(saying(500, "Loading model")));
}

TEST(ModelServerReplies, AServerThatWantsAKeyIsNotEnabledWhateverItSays) {
  const ModelFailure notEnabled = AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled);
  for (const int status : {401, 403}) {
    EXPECT_EQ(ModelServerReplies::failure(saying(status, "context length"), kNow), notEnabled);
    EXPECT_TRUE(ModelServerReplies::isClosed(reply(status, {})));
  }
  EXPECT_FALSE(ModelServerReplies::isClosed(reply(404, {})));
}

TEST(ModelServerReplies, TheWordsTellWhatIsTooLongAndWhatCannotBeSeen) {
  const std::pair<const char*, Kind> rows[] = {
      {"Context length exceeded", Kind::contextSizeExceeded},
      {"outside the context window", Kind::contextSizeExceeded},
      {"the prompt is too long", Kind::contextSizeExceeded},
      {"hint: provide the MMPROJ", Kind::unsupportedCapability},
      {"the model has no vision", Kind::unsupportedCapability},
      {"multimodal input in the context", Kind::unsupportedCapability},
      {"out of memory", Kind::other},
  };
  for (const auto& [words, kind] : rows) {
    EXPECT_EQ(ModelServerReplies::failure(saying(400, words), kNow), failureOf(kind)) << words;
    EXPECT_EQ(ModelServerReplies::failure(saying(500, words), kNow), failureOf(kind)) << words;
    EXPECT_EQ(ModelServerReplies::failure(saying(418, words), kNow), failureOf(Kind::other)) << words;
  }
}

TEST(ModelServerReplies, ABusyServerSaysWhenToComeBack) {
  for (const int status : {429, 503}) {
    HttpReply busy = reply(status, {});
    EXPECT_EQ(ModelServerReplies::failure(busy, kNow), failureOf(Kind::rateLimited));
    busy.headers["retry-after"] = "30";
    EXPECT_EQ(ModelServerReplies::failure(busy, kNow),
              ModelFailure(ModelError{Kind::rateLimited, Date{kNow.seconds + 30}}));
  }
}

TEST(ModelServerReplies, SuccessWithoutAnAnswerIsUnreadable) {
  EXPECT_EQ(ModelServerReplies::failure(reply(200, "{}"), kNow), failureOf(Kind::unreadableAnswer));
  EXPECT_EQ(ModelServerReplies::failure(reply(302, {}), kNow), failureOf(Kind::other));
}

TEST(ModelServerReplies, AnExchangeWithoutAReplyMeansThis) {
  struct Row {
    HttpFailure exchange;
    ModelFailure meaning;
    bool isSilent;
  };
  const Row rows[] = {
      {HttpFailure::cancelled, AnalysisCancelled(), true},
      {HttpFailure::unreachable, AnalysisError::unavailable(Unavailability::deviceNotEligible), true},
      {HttpFailure::timedOut, failureOf(Kind::other), true},
      {HttpFailure::lost, failureOf(Kind::other), false},
      {HttpFailure::malformed, failureOf(Kind::unreadableAnswer), false},
      {HttpFailure::tooLarge, failureOf(Kind::unreadableAnswer), false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ModelServerReplies::failure(row.exchange), row.meaning) << static_cast<int>(row.exchange);
    EXPECT_EQ(ModelServerReplies::isSilent(row.exchange), row.isSilent) << static_cast<int>(row.exchange);
  }
}

TEST(ModelServerReplies, TheSchemaIsShownOnOneLine) {
  EXPECT_EQ(ModelServerReplies::schemaInWords({{QStringLiteral("type"), QStringLiteral("object")}}),
            QStringLiteral("\n\nAnswer with a JSON object of this schema:\n{\"type\":\"object\"}"));
}

}  // namespace
}  // namespace quillmere
