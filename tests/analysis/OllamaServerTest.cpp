#include "analysis/OllamaServer.h"

#include "analysis/ModelServerFixture.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;
using testing::answerOf;
using testing::failureOf;
using testing::FakeOllama;
using testing::FakeReply;
using testing::httpReply;
using testing::jsonReply;
using testing::kLoginPage;
using testing::ModelAnswer;
using testing::received;

const QStringList kSees{QStringLiteral("completion"), QStringLiteral("vision")};
const QStringList kReads{QStringLiteral("completion"), QStringLiteral("tools")};

class OllamaServerTest : public testing::ModelServerFixture {
 protected:
  std::string look(const FakeOllama& script) {
    server.script = script;
    return told(finish(ollama.look(client, server.address())));
  }
  ModelAnswer answer(const FakeReply& reply) { return answerOf(ollama.answer(received(reply), kNow)); }
  OllamaServer ollama;
};

TEST_F(OllamaServerTest, TheFirstModelThatSeesIsFound) {
  EXPECT_EQ(look({.models = {{"reads:7b", kReads}, {"sees:4b", kSees}, {"sees:8b", kSees}}}), "sees:4b");
  EXPECT_EQ(server.paths(), (std::vector<QByteArray>{"/api/version", "/api/tags", "/api/show", "/api/show"}));
  EXPECT_EQ(server.requests[3].body, R"({"model":"sees:4b"})");
  EXPECT_EQ(server.requests[3].method, "POST");
}

TEST_F(OllamaServerTest, WithoutSuchAModelItIsBlind) {
  EXPECT_EQ(look({}), "blind");
  EXPECT_EQ(look({.models = {{"reads:7b", kReads}, {"old:7b", {}}}}), "blind");
}

TEST_F(OllamaServerTest, AModelThatRunsOnAnotherMachineIsNeverUsed) {
  const QJsonObject host{{QStringLiteral("remote_host"), QStringLiteral("https://example.com:443")}};
  const QJsonObject model{{QStringLiteral("remote_model"), QStringLiteral("sees")}};
  EXPECT_EQ(
      look({.models = {{"a", kSees, host}, {"b", kSees, model}, {"c", kSees, {}, host}, {"d", kSees, {}, model}}}),
      "blind");
  EXPECT_EQ(look({.models = {{"sees:480b-cloud", kSees}, {"sees:cloud", kSees}}}), "blind");
  EXPECT_EQ(look({.models = {{"a", kSees, host}, {"cloudy:4b", kSees}}}), "cloudy:4b");
}

TEST_F(OllamaServerTest, AnotherProgramsServerIsNone) {
  const auto lookAt = [&](const testing::FakeModelServer::Script& script) {
    server.script = script;
    return told(finish(ollama.look(client, server.address())));
  };
  EXPECT_EQ(lookAt([](const auto&) { return httpReply(404, "<html>not found</html>"); }), "none");
  EXPECT_EQ(lookAt([](const auto&) { return httpReply(200, "[]"); }), "none");
  EXPECT_EQ(lookAt([](const auto&) { return FakeReply{.bytes = "SSH-2.0-server\r\n\r\n"}; }), "none");
  EXPECT_EQ(lookAt([](const auto&) {
              return jsonReply(200, {{QStringLiteral("version"), QStringLiteral("3")}});
            }),
            "none")
      << "it has a version, but no models";
}

TEST_F(OllamaServerTest, ASilentAddressIsTold) {
  server.stopListening();
  EXPECT_EQ(told(finish(ollama.look(client, server.address()))), "silent");
}

TEST_F(OllamaServerTest, AServerThatDoesNotAnswerIsNotWaitedForLong) {
  std::optional<ModelServerLook> seen;
  const auto task = keep(ollama.look(client, server.address()), seen);
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  executor.advance(seconds(5));
  ASSERT_TRUE(seen);
  EXPECT_EQ(told(*seen), "silent");
}

TEST_F(OllamaServerTest, TheQuestionHasTheseParts) {
  const ModelRequest request = ModelQuestion::request(folder.file("a"), QStringLiteral("Hello"));
  const HttpRequest question = ollama.question(request, {smallPicture(), "image/png"}, QStringLiteral("sees:4b"));
  EXPECT_EQ(question.method, "POST");
  EXPECT_EQ(question.path, "/api/chat");
  const QJsonObject body = QJsonDocument::fromJson(question.body).object();
  EXPECT_EQ(body[QLatin1String("model")], QStringLiteral("sees:4b"));
  EXPECT_EQ(body[QLatin1String("stream")], false);
  EXPECT_EQ(body[QLatin1String("think")], false);
  EXPECT_EQ(body[QLatin1String("format")], ModelQuestion::answerSchema());
  EXPECT_EQ(body[QLatin1String("options")], (QJsonObject{{QStringLiteral("temperature"), 0.2},
                                                         {QStringLiteral("num_predict"), 250},
                                                         {QStringLiteral("num_ctx"), 8192}}));
  const QJsonArray messages = body[QLatin1String("messages")].toArray();
  ASSERT_EQ(messages.size(), 2);
  EXPECT_EQ(messages[0][QLatin1String("role")], QStringLiteral("system"));
  const QString system = messages[0][QLatin1String("content")].toString();
  EXPECT_TRUE(system.startsWith(ModelQuestion::instructions() + QStringLiteral("\n\nAnswer with a JSON object")));
  EXPECT_TRUE(system.contains(QStringLiteral("At most 240 characters."))) << "the guides of the fields";
  EXPECT_EQ(
      messages[1].toObject(),
      (QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                   {QStringLiteral("content"), request.question + QStringLiteral("\n\n") + *request.recognizedText},
                   {QStringLiteral("images"), QJsonArray{QString::fromLatin1(smallPicture().toBase64())}}}));
}

TEST_F(OllamaServerTest, WithoutTextThePictureIsAskedAboutAlone) {
  const ModelRequest request = ModelQuestion::request(folder.file("a"), std::nullopt);
  const QByteArray body = ollama.question(request, {smallPicture(), "image/png"}, QStringLiteral("x")).body;
  EXPECT_EQ(QJsonDocument::fromJson(body)[QLatin1String("messages")][1][QLatin1String("content")], request.question);
}

TEST_F(OllamaServerTest, TheFieldsOfAnAnswerAreRead) {
  EXPECT_EQ(answer(FakeOllama().chat), ModelAnswer(kLoginPage));
  EXPECT_EQ(answer(FakeOllama::said(R"({"filename":"login page","x":1,"description":"A login page"})")),
            ModelAnswer(kLoginPage));
}

TEST_F(OllamaServerTest, AnAnswerThatIsNotAsAskedForIsUnreadable) {
  for (const auto& reply :
       {FakeOllama::said(""), FakeOllama::said("A login page"), FakeOllama::said(R"({"description":"A login page"})"),
        FakeOllama::said(R"({"description":"A login page","filename":7})"),
        FakeOllama::said(R"({"description":"A login page","filename":"lo)"), httpReply(200, ""),
        httpReply(200, "{\"message\":"), httpReply(200, "[]"), httpReply(200, "null"), jsonReply(200, {}),
        httpReply(200, R"({"message":"text","done":true})"), httpReply(200, R"({"message":{"content":7},"done":true})"),
        httpReply(200, "\xff\xfe"), httpReply(200, QByteArray(200000, '['))}) {
    EXPECT_EQ(answer(reply), ModelAnswer(failureOf(Kind::unreadableAnswer))) << reply.bytes.left(300).toStdString();
  }
}

TEST_F(OllamaServerTest, AnAnswerThatWasCutShortIsUnreadable) {
  const QString whole = QStringLiteral(R"({"description":"A login page","filename":"login page"})");
  EXPECT_EQ(answer(FakeOllama::said(whole, QStringLiteral("length"))), ModelAnswer(failureOf(Kind::unreadableAnswer)));
  FakeReply streamed =
      httpReply(200, R"({"message":{"content":"{\"description\":\"a\",\"filename\":\"b\"}"},"done":false})");
  EXPECT_EQ(answer(streamed), ModelAnswer(failureOf(Kind::unreadableAnswer)));
}

TEST_F(OllamaServerTest, AModelThatWasOnlyLoadedIsNotReady) {
  EXPECT_EQ(answer(FakeOllama::said(QString(), QStringLiteral("load"))), ModelAnswer(failureOf(Kind::modelNotUsable)));
}

TEST_F(OllamaServerTest, ErrorsAreTold) {
  const std::vector<std::pair<FakeReply, ModelFailure>> rows = {
      {FakeOllama::error(404, "model 'sees:4b' not found"), failureOf(Kind::modelNotUsable)},
      {FakeOllama::error(503, "server busy, please try again.  maximum pending requests exceeded"),
       failureOf(Kind::rateLimited)},
      {FakeOllama::error(503, "llm server loading model"), failureOf(Kind::modelNotUsable)},
      {FakeOllama::error(429, "too many requests", "Retry-After: 12\r\n"), ModelError{Kind::rateLimited, kNow + 12}},
      {FakeOllama::error(400, "prompt too long; exceeded max context length by 4 tokens"),
       failureOf(Kind::contextSizeExceeded)},
      {FakeOllama::error(400, "the input does not fit the context"), failureOf(Kind::contextSizeExceeded)},
      {FakeOllama::error(413, "request body too large"), failureOf(Kind::contextSizeExceeded)},
      {FakeOllama::error(400, "this model does not support image input"), failureOf(Kind::unsupportedCapability)},
      {FakeOllama::error(400, "model is missing data required for image input; vision"),
       failureOf(Kind::unsupportedCapability)},
      {FakeOllama::error(400, "invalid format"), failureOf(Kind::other)},
      {FakeOllama::error(401, "unauthorized"), AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled)},
      {FakeOllama::error(403, ""), AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled)},
      {FakeOllama::error(499, "cancelled"), failureOf(Kind::other)},
      {FakeOllama::error(500, "context deadline exceeded"), failureOf(Kind::other)},
      {FakeOllama::error(500, "boom"), failureOf(Kind::other)},
      {FakeOllama::error(502, "bad gateway"), failureOf(Kind::other)},
      {FakeOllama::error(200, "boom"), failureOf(Kind::other)},
      {FakeOllama::error(200, "exceeds the available context size"), failureOf(Kind::contextSizeExceeded)},
      {httpReply(307, "", "Location: http://example.com/\r\n"), failureOf(Kind::other)},
      {httpReply(500, "<html>"), failureOf(Kind::other)},
  };
  for (const auto& [reply, failure] : rows) {
    EXPECT_EQ(answer(reply), ModelAnswer(failure)) << reply.bytes.toStdString();
  }
}

}  // namespace
}  // namespace quillmere
