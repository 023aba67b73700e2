#include "analysis/LlamaServer.h"

#include "analysis/ModelServerFixture.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;
using testing::answerOf;
using testing::failureOf;
using testing::FakeLlama;
using testing::FakeModelServer;
using testing::FakeReply;
using testing::FakeRequest;
using testing::httpReply;
using testing::jsonReply;
using testing::kLoginPage;
using testing::ModelAnswer;
using testing::received;

class LlamaServerTest : public testing::ModelServerFixture {
 protected:
  std::string look(const FakeModelServer::Script& script) {
    server.script = script;
    return told(finish(llama.look(client, server.address())));
  }
  /// With one path answered in another way.
  std::string lookWhere(const QByteArray& path, const FakeReply& reply) {
    return look([=](const FakeRequest& request) { return request.path == path ? reply : FakeLlama()(request); });
  }
  ModelAnswer answer(const FakeReply& reply) { return answerOf(llama.answer(received(reply), kNow)); }
  LlamaServer llama;
};

TEST_F(LlamaServerTest, AModelThatSeesIsFound) {
  EXPECT_EQ(look(FakeLlama()), "/models/sees.gguf");
  EXPECT_EQ(server.paths(), (std::vector<QByteArray>{"/health", "/v1/models", "/props"}));
}

TEST_F(LlamaServerTest, AModelThatReadsOnlyIsBlind) {
  EXPECT_EQ(look(FakeLlama{.sees = false}), "blind");
  EXPECT_EQ(lookWhere("/props", jsonReply(200, {})), "blind") << "an older server";
  EXPECT_EQ(lookWhere("/v1/models", jsonReply(200, {{QStringLiteral("data"), QJsonArray()}})), "blind");
}

TEST_F(LlamaServerTest, AModelMayStillBeLoading) {
  EXPECT_EQ(look(FakeLlama{.health = FakeLlama::loading()}), "loading");
  EXPECT_EQ(lookWhere("/v1/models", FakeLlama::loading()), "loading");
  EXPECT_EQ(lookWhere("/props", FakeLlama::loading()), "loading");
}

TEST_F(LlamaServerTest, AServerThatAsksForAKeyIsClosedToUs) {
  EXPECT_EQ(lookWhere("/props", FakeLlama::error(401, "authentication_error", "Invalid API Key")), "blind");
  EXPECT_EQ(lookWhere("/v1/models", FakeLlama::error(401, "authentication_error", "Invalid API Key")), "blind");
}

TEST_F(LlamaServerTest, AnotherProgramsServerIsNone) {
  EXPECT_EQ(lookWhere("/health", httpReply(200, "OK")), "none");
  EXPECT_EQ(lookWhere("/health", httpReply(503, "down for repair")), "none");
  EXPECT_EQ(lookWhere("/v1/models", httpReply(404, "not found")), "none") << "many programs tell their health";
  EXPECT_EQ(lookWhere("/v1/models", FakeReply{.bytes = "HTTP/1.1 200"}), "none");
  EXPECT_EQ(lookWhere("/props", FakeReply{.bytes = ""}), "none");
}

TEST_F(LlamaServerTest, ASilentAddressIsTold) {
  server.stopListening();
  EXPECT_EQ(told(finish(llama.look(client, server.address()))), "silent");
}

TEST_F(LlamaServerTest, TheQuestionHasTheseParts) {
  const ModelRequest request = ModelQuestion::request(folder.file("a"), QStringLiteral("Hello"));
  const HttpRequest question = llama.question(request, {smallPicture(), "image/jpeg"}, QStringLiteral("sees"));
  EXPECT_EQ(question.method, "POST");
  EXPECT_EQ(question.path, "/v1/chat/completions");
  const QJsonObject body = QJsonDocument::fromJson(question.body).object();
  EXPECT_EQ(body[QLatin1String("model")], QStringLiteral("sees"));
  EXPECT_EQ(body[QLatin1String("stream")], false);
  EXPECT_EQ(body[QLatin1String("temperature")], 0.2);
  EXPECT_EQ(body[QLatin1String("max_tokens")], 250);
  const QJsonObject format = body[QLatin1String("response_format")].toObject();
  EXPECT_EQ(format[QLatin1String("type")], QStringLiteral("json_schema"));
  EXPECT_EQ(format[QLatin1String("json_schema")][QLatin1String("strict")], true);
  EXPECT_FALSE(format[QLatin1String("json_schema")][QLatin1String("name")].toString().isEmpty());
  EXPECT_EQ(format[QLatin1String("json_schema")][QLatin1String("schema")], ModelQuestion::answerSchema());
  const QJsonArray messages = body[QLatin1String("messages")].toArray();
  ASSERT_EQ(messages.size(), 2);
  EXPECT_EQ(messages[0][QLatin1String("role")], QStringLiteral("system"));
  EXPECT_TRUE(messages[0][QLatin1String("content")].toString().startsWith(ModelQuestion::instructions()));
  EXPECT_EQ(messages[1][QLatin1String("role")], QStringLiteral("user"));
  const QJsonArray parts = messages[1][QLatin1String("content")].toArray();
  ASSERT_EQ(parts.size(), 3);
  EXPECT_EQ(parts[0][QLatin1String("text")], request.question);
  EXPECT_EQ(parts[1][QLatin1String("type")], QStringLiteral("image_url"));
  EXPECT_EQ(parts[1][QLatin1String("image_url")][QLatin1String("url")],
            QString::fromLatin1("data:image/jpeg;base64," + smallPicture().toBase64()));
  EXPECT_EQ(parts[2][QLatin1String("text")], *request.recognizedText);
}

TEST_F(LlamaServerTest, WithoutTextThePictureIsAskedAboutAlone) {
  const ModelRequest request = ModelQuestion::request(folder.file("a"), std::nullopt);
  const QByteArray body = llama.question(request, {smallPicture(), "image/png"}, QStringLiteral("x")).body;
  EXPECT_EQ(QJsonDocument::fromJson(body)[QLatin1String("messages")][1][QLatin1String("content")].toArray().size(), 2);
}

TEST_F(LlamaServerTest, TheFieldsOfAnAnswerAreRead) {
  EXPECT_EQ(answer(FakeLlama().chat), ModelAnswer(kLoginPage));
}

TEST_F(LlamaServerTest, AnAnswerThatIsNotAsAskedForIsUnreadable) {
  for (const auto& reply :
       {FakeLlama::said(""), FakeLlama::said("A login page"), FakeLlama::said(R"({"filename":"login page"})"),
        FakeLlama::said(R"({"description":null,"filename":"login page"})"), httpReply(200, ""), jsonReply(200, {}),
        httpReply(200, R"({"choices":[]})"), httpReply(200, R"({"choices":{"0":1}})"),
        httpReply(200, R"({"choices":[{"message":[]}]})"), httpReply(200, "data: {}\n\n")}) {
    EXPECT_EQ(answer(reply), ModelAnswer(failureOf(Kind::unreadableAnswer))) << reply.bytes.toStdString();
  }
}

TEST_F(LlamaServerTest, AnAnswerThatWasCutShortIsUnreadable) {
  EXPECT_EQ(answer(FakeLlama::said(R"({"description":"A login page","filename":"login page"})", "length")),
            ModelAnswer(failureOf(Kind::unreadableAnswer)));
}

TEST_F(LlamaServerTest, ARefusalIsTold) {
  EXPECT_EQ(answer(FakeLlama::said("", "content_filter")), ModelAnswer(failureOf(Kind::guardrailViolation)));
  const QString refusal = QStringLiteral("refusal");
  EXPECT_EQ(answer(FakeLlama::choice({{refusal, QStringLiteral("I cannot help with that.")}}, "stop")),
            ModelAnswer(failureOf(Kind::refusal)));
  EXPECT_EQ(answer(FakeLlama::choice({{QStringLiteral("content"), QJsonValue()}, {refusal, QString()}}, "stop")),
            ModelAnswer(failureOf(Kind::refusal)));
  const QString fields = QStringLiteral(R"({"description":"A login page","filename":"login page"})");
  EXPECT_EQ(answer(FakeLlama::choice({{QStringLiteral("content"), fields}, {refusal, QString()}}, "stop")),
            ModelAnswer(kLoginPage))
      << "an empty one beside an answer";
  EXPECT_EQ(answer(FakeLlama::choice({{QStringLiteral("content"), fields}, {refusal, QJsonValue()}}, "stop")),
            ModelAnswer(kLoginPage));
}

TEST_F(LlamaServerTest, ErrorsAreTold) {
  const std::vector<std::pair<FakeReply, ModelFailure>> rows = {
      {FakeLlama::loading(), failureOf(Kind::modelNotUsable)},
      {FakeLlama::error(503, "server_error", "no slot available"), failureOf(Kind::rateLimited)},
      {FakeLlama::error(429, "rate_limit", "slow down", "Retry-After: 3\r\n"), ModelError{Kind::rateLimited, kNow + 3}},
      {FakeLlama::error(400, "exceed_context_size_error", "the request exceeds the available size"),
       failureOf(Kind::contextSizeExceeded)},
      {FakeLlama::error(400, "invalid_request_error", "bad request"), failureOf(Kind::other)},
      {FakeLlama::error(401, "authentication_error", "Invalid API Key"),
       AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled)},
      {FakeLlama::error(404, "not_found_error", "File Not Found"), failureOf(Kind::modelNotUsable)},
      {FakeLlama::error(
           500, "server_error",
           "image input is not supported - hint: if this is unexpected, you may need to provide the mmproj"),
       failureOf(Kind::unsupportedCapability)},
      {FakeLlama::error(500, "server_error", "boom"), failureOf(Kind::other)},
      {httpReply(301, ""), failureOf(Kind::other)},
  };
  for (const auto& [reply, failure] : rows) {
    EXPECT_EQ(answer(reply), ModelAnswer(failure)) << reply.bytes.toStdString();
  }
}

}  // namespace
}  // namespace quillmere
