#include "analysis/LiveLanguageModel.h"

#include <QtNetwork/QTcpServer>

#include "analysis/ModelServerFixture.h"
#include "description/ImageAnalysisService.h"
#include "fakes/DecodedPictures.h"
#include "model/Settings.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;
using testing::answerOf;
using testing::failureOf;
using testing::FakeLlama;
using testing::FakeModelServer;
using testing::FakeOllama;
using testing::FakeReply;
using testing::FakeRequest;
using testing::httpReply;
using testing::kLoginPage;
using testing::ModelAnswer;

const ForeignModelServer kForeign{QStringLiteral("someone"), QStringLiteral("127.0.0.1:11434"),
                                  QStringLiteral("1001@127.0.0.1:11434")};
const QStringList kSees{QStringLiteral("completion"), QStringLiteral("vision")};

/// The fixture's server speaks as Ollama and stands at a usual address; `other` speaks as llama.cpp's and stands at
/// none, until a test says so.
class LiveLanguageModelTest : public testing::ModelServerFixture {
 protected:
  LiveLanguageModelTest() {
    ollama.models = {{"sees:4b", kSees}};
    server.script = [this](const FakeRequest& request) { return ollama(request); };
    other.script = [this](const FakeRequest& request) { return llama(request); };
  }
  std::unique_ptr<LiveLanguageModel> made() {
    ModelServerPlaces places{[this] { return configured; }, [this] { return environment; }, usual,
                             [this](const LocalServerAddress&) { return listener; },
                             [this](const QString& key) { return allowed.contains(key); }};
    return std::make_unique<LiveLanguageModel>(executor, testing::decodedPictures(), places, [] { return kNow; });
  }
  std::optional<Unavailability> availability() { return finish(model->availability()); }
  ModelRequest request(const std::optional<QString>& text = std::nullopt) {
    return ModelQuestion::request(writePicture(), text);
  }
  ModelAnswer respond() { return answerOf(finish(model->respond(request()))); }
  static QString text(const FakeModelServer& place) { return QStringLiteral("127.0.0.1:%1").arg(place.port()); }
  int looks() const {
    const auto paths = server.paths();
    return static_cast<int>(std::count(paths.begin(), paths.end(), "/api/version"));
  }

  FakeOllama ollama;
  FakeLlama llama;
  FakeModelServer other;
  std::optional<QString> configured;
  std::optional<QString> environment;
  ServerListener listener{true, std::nullopt};
  QStringList allowed;
  std::vector<LocalServerAddress> usual{server.address()};
  std::unique_ptr<LiveLanguageModel> model = made();
};

TEST_F(LiveLanguageModelTest, AServerAtAUsualAddressIsFoundAndAsked) {
  EXPECT_EQ(availability(), std::nullopt);
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  const FakeRequest* asked = server.requestFor("/api/chat");
  ASSERT_TRUE(asked);
  EXPECT_EQ(asked->json()[QLatin1String("model")], QStringLiteral("sees:4b"));
  EXPECT_EQ(asked->json()[QLatin1String("messages")][1][QLatin1String("images")][0],
            QString::fromLatin1(smallPicture().toBase64()));
}

TEST_F(LiveLanguageModelTest, AServerOfAnotherPersonIsNotAskedAnything) {
  listener.foreign = kForeign;
  EXPECT_EQ(availability(), Unavailability::deviceNotEligible);
  EXPECT_TRUE(server.paths().empty());
  EXPECT_EQ(model->foreignServer(), kForeign);
}

TEST_F(LiveLanguageModelTest, AnotherPersonsServerIsAskedWhileItIsAllowed) {
  listener.foreign = kForeign;
  allowed = {kForeign.key};
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_EQ(model->foreignServer(), kForeign) << "it is still told whose it is";

  allowed = {QStringLiteral("1002@127.0.0.1:11434")};
  server.requests.clear();
  EXPECT_NE(respond(), ModelAnswer(kLoginPage));
  EXPECT_FALSE(server.requestFor("/api/chat")) << "what was found is not trusted either";
}

TEST_F(LiveLanguageModelTest, OursHasNoForeignServerToTellOf) {
  EXPECT_EQ(availability(), std::nullopt);
  EXPECT_EQ(model->foreignServer(), std::nullopt);
}

TEST_F(LiveLanguageModelTest, WhereItCannotBeToldWhoListensNothingIsAsked) {
  listener.isKnown = false;
  EXPECT_EQ(availability(), Unavailability::deviceNotEligible);
  EXPECT_TRUE(server.paths().empty());
}

TEST_F(LiveLanguageModelTest, OneThatTookThePlaceOfAFoundOneGetsNoPicture) {
  ASSERT_EQ(availability(), std::nullopt);
  listener.foreign = kForeign;
  EXPECT_NE(respond(), ModelAnswer(kLoginPage));
  EXPECT_FALSE(server.requestFor("/api/chat"));
}

TEST_F(LiveLanguageModelTest, BothKindsOfServersAreKnown) {
  usual = {other.address()};
  model = made();
  EXPECT_EQ(availability(), std::nullopt);
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(other.requestFor("/v1/chat/completions"));
}

TEST_F(LiveLanguageModelTest, AServerAtALocalSocketIsAskedToo) {
  FakeModelServer local(folder.file("model.sock"));
  local.script = llama;
  configured = folder.file("model.sock").displayPath();
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(local.requestFor("/v1/chat/completions"));
  EXPECT_EQ(server.connections, 0);
}

TEST_F(LiveLanguageModelTest, TheConfiguredAddressIsAskedFirstThenTheEnvironmentsThenTheUsualOnes) {
  configured = QStringLiteral("127.0.0.1:1");
  environment = QStringLiteral("localhost:2");
  EXPECT_EQ(model->addresses(),
            (std::vector{LocalServerAddress::loopback(1), LocalServerAddress::loopback(2), server.address()}));
  environment = text(server);
  EXPECT_EQ(model->addresses(), (std::vector{LocalServerAddress::loopback(1), server.address()})) << "each once";
  configured = text(other);
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(other.requestFor("/v1/chat/completions"));
  EXPECT_EQ(server.connections, 0);
}

TEST_F(LiveLanguageModelTest, AnAddressThatIsNotOfThisMachineIsNeverAsked) {
  const QString port = QStringLiteral(":%1").arg(other.port());
  for (const char* host : {"[::ffff:127.0.0.1]", "0.0.0.0", "127.1", "2130706433", "0x7f.1", "127.0.0.1.", "localhost.",
                           "user@127.0.0.1", "127.0.0.1.example.com", "https://127.0.0.1", "example.com"}) {
    configured = QString::fromLatin1(host) + port;
    environment = configured;
    // A server's own programs mean every address of this machine by it.
    if (configured->startsWith(QLatin1String("0.0.0.0"))) environment.reset();
    EXPECT_EQ(model->addresses(), usual) << host;
    EXPECT_EQ(availability(), std::nullopt) << "the usual address is asked all the same";
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(other.connections, 0) << "although each of the first ones would have led there";
}

TEST_F(LiveLanguageModelTest, AServerThatWasToldToListenEverywhereIsFoundHere) {
  environment = QStringLiteral("0.0.0.0:%1").arg(other.port());
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(other.requestFor("/v1/chat/completions"));
}

TEST_F(LiveLanguageModelTest, TheUsualPortsAndTheSettingAreThese) {
  UserDefaults defaults(folder.file("settings.json").displayPath());
  defaults.set(QStringLiteral("quillmere.model-address"), QStringLiteral("127.0.0.1:9"));
  ::setenv("OLLAMA_HOST", "127.0.0.1:10", 1);
  const LiveLanguageModel standard(
      executor, testing::decodedPictures(),
      ModelServerPlaces{
          .configured = [&] { return Settings::storedModelAddress(defaults); }, .listener = {}, .isAllowed = {}},
      [] { return kNow; });
  using Address = LocalServerAddress;
  EXPECT_EQ(standard.addresses(), (std::vector{Address::loopback(9), Address::loopback(10), Address::loopback(11434),
                                               Address::loopback(8080)}));
  ::unsetenv("OLLAMA_HOST");
  defaults.set(QStringLiteral("quillmere.model-address"), 7);
  EXPECT_EQ(standard.addresses(), (std::vector{Address::loopback(11434), Address::loopback(8080)}));
}

TEST_F(LiveLanguageModelTest, WithoutAServerThisMachineIsNotEligible) {
  server.stopListening();
  EXPECT_EQ(availability(), Unavailability::deviceNotEligible);
  EXPECT_EQ(respond(), ModelAnswer(AnalysisError::unavailable(Unavailability::deviceNotEligible)));
}

TEST_F(LiveLanguageModelTest, AServerWithoutAModelThatSeesIsNotEnabled) {
  ollama.models.clear();
  EXPECT_EQ(availability(), Unavailability::appleIntelligenceNotEnabled);
}

TEST_F(LiveLanguageModelTest, AModelThatIsLoadingIsNotReady) {
  usual = {other.address()};
  model = made();
  llama.health = FakeLlama::loading();
  EXPECT_EQ(availability(), Unavailability::modelNotReady);
}

TEST_F(LiveLanguageModelTest, OfSeveralServersTheOneNearestToAModelSaysWhyThereIsNone) {
  FakeModelServer third;
  third.script = [](const auto&) { return httpReply(404, "not found"); };
  usual = {server.address(), other.address(), third.address(), LocalServerAddress::loopback(1)};
  model = made();
  ollama.models.clear();
  llama.health = FakeLlama::loading();
  EXPECT_EQ(availability(), Unavailability::modelNotReady);
  llama.health = httpReply(404, "");
  EXPECT_EQ(availability(), Unavailability::appleIntelligenceNotEnabled);
  llama = {};
  EXPECT_EQ(availability(), std::nullopt) << "what is blind does not keep from asking the next";
}

TEST_F(LiveLanguageModelTest, WhatWasFoundIsRemembered) {
  EXPECT_EQ(availability(), std::nullopt);
  respond();
  respond();
  EXPECT_EQ(looks(), 1);
}

TEST_F(LiveLanguageModelTest, AServerThatHasGoneIsNotAvailableThoughItWasFound) {
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  server.stopListening();
  EXPECT_EQ(availability(), Unavailability::deviceNotEligible);
}

TEST_F(LiveLanguageModelTest, ASlowLookDoesNotOverwriteALaterOne) {
  configured = text(other);
  other.script = nullptr;
  std::optional<std::optional<Unavailability>> slow;
  const auto looking = keep(model->availability(), slow);
  ASSERT_TRUE(isThere([&] { return other.requests.size() == 1; }));
  configured.reset();
  EXPECT_EQ(availability(), std::nullopt);
  executor.advance(seconds(5));
  ASSERT_TRUE(isThere([&] { return slow.has_value(); }));
  const int before = looks();
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_EQ(looks(), before) << "what the later look found is still remembered";
}

TEST_F(LiveLanguageModelTest, WhatWasNotFoundIsLookedForAnew) {
  ollama.models.clear();
  EXPECT_EQ(availability(), Unavailability::appleIntelligenceNotEnabled);
  ollama.models = {{"sees:4b", kSees}};
  EXPECT_EQ(availability(), std::nullopt);
}

TEST_F(LiveLanguageModelTest, AfterAFailureItLooksAnew) {
  ollama.chat = FakeOllama::error(404, "model 'sees:4b' not found");
  EXPECT_EQ(respond(), ModelAnswer(failureOf(Kind::modelNotUsable)));
  ollama = {.models = {{"new:4b", kSees}}};
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_EQ(looks(), 2);
  EXPECT_EQ(server.requests.back().json()[QLatin1String("model")], QStringLiteral("new:4b"));
}

TEST_F(LiveLanguageModelTest, AnotherSettingIsHeededAtOnce) {
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  configured = text(other);
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(other.requestFor("/v1/chat/completions"));
}

TEST_F(LiveLanguageModelTest, AServerThatIsGoneIsReplacedByAnother) {
  usual.push_back(other.address());
  model = made();
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  server.stopListening();
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  EXPECT_TRUE(other.requestFor("/v1/chat/completions"));
}

TEST_F(LiveLanguageModelTest, AServerThatIsGoneWithoutAnotherIsNone) {
  EXPECT_EQ(respond(), ModelAnswer(kLoginPage));
  server.stopListening();
  EXPECT_EQ(respond(), ModelAnswer(AnalysisError::unavailable(Unavailability::deviceNotEligible)));
}

TEST_F(LiveLanguageModelTest, AConnectionThatIsLostIsAFailureThatMayPass) {
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n{\"message\""};
  EXPECT_EQ(respond(), ModelAnswer(failureOf(Kind::other)));
}

TEST_F(LiveLanguageModelTest, AnAnswerThatIsNoHttpOrIsHugeIsUnreadable) {
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\n"};
  EXPECT_EQ(respond(), ModelAnswer(failureOf(Kind::unreadableAnswer)));
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n"};
  EXPECT_EQ(respond(), ModelAnswer(failureOf(Kind::unreadableAnswer)));
}

TEST_F(LiveLanguageModelTest, ARedirectIsAFailure) {
  const QByteArray place = "Location: http://" + other.address().hostHeader() + "/api/chat\r\n";
  ollama.chat = httpReply(302, "", place);
  EXPECT_EQ(respond(), ModelAnswer(failureOf(Kind::other)));
  EXPECT_EQ(other.connections, 0);
}

TEST_F(LiveLanguageModelTest, AnAnswerMayTakeAMinute) {
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\n", .then = FakeReply::Then::staysOpen};
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  ASSERT_TRUE(isThere([&] { return server.requestFor("/api/chat") != nullptr; }));
  executor.advance(seconds(60) - Duration(1));
  EXPECT_FALSE(response);
  executor.advance(Duration(1));
  ASSERT_TRUE(response);
  EXPECT_EQ(answerOf(*response), ModelAnswer(failureOf(Kind::other)));
}

TEST_F(LiveLanguageModelTest, CancellingClosesTheConnectionAtOnce) {
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\n", .then = FakeReply::Then::staysOpen};
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  ASSERT_TRUE(isThere([&] { return server.requestFor("/api/chat") != nullptr; }));
  task.cancel();
  ASSERT_TRUE(response);
  EXPECT_EQ(answerOf(*response), ModelAnswer(AnalysisCancelled()));
  EXPECT_TRUE(isThere([&] { return server.openConnections == 0; }));
}

TEST_F(LiveLanguageModelTest, CancellingEndsALookToo) {
  server.script = nullptr;
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  ASSERT_TRUE(isThere([&] { return server.requests.size() == 1; }));
  task.cancel();
  ASSERT_TRUE(response);
  EXPECT_EQ(answerOf(*response), ModelAnswer(AnalysisCancelled()));
  EXPECT_EQ(server.connections, 1) << "no other question follows";
}

TEST_F(LiveLanguageModelTest, CancellingWhileThePictureIsReadSendsNothing) {
  EXPECT_EQ(availability(), std::nullopt);
  executor.holdBackground();
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  task.cancel();
  executor.runHeldBackground();
  ASSERT_TRUE(response);
  EXPECT_EQ(answerOf(*response), ModelAnswer(AnalysisCancelled()));
  EXPECT_FALSE(server.requestFor("/api/chat"));
}

TEST_F(LiveLanguageModelTest, APictureThatCannotBeReadIsNotAskedAbout) {
  ModelRequest missing = request();
  missing.picture = folder.file("missing.png");
  EXPECT_EQ(answerOf(finish(model->respond(missing))), ModelAnswer(failureOf(Kind::other)));
  EXPECT_FALSE(server.requestFor("/api/chat"));
}

TEST_F(LiveLanguageModelTest, WhatIsUnderWayGoesWithIt) {
  ollama.chat = {.bytes = "HTTP/1.1 200 OK\r\n", .then = FakeReply::Then::staysOpen};
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  ASSERT_TRUE(isThere([&] { return server.requestFor("/api/chat") != nullptr; }));
  model.reset();
  EXPECT_TRUE(isThere([&] { return server.openConnections == 0; }));
  EXPECT_FALSE(response);
  task.cancel();
}

TEST_F(LiveLanguageModelTest, ItMayGoWhileAPictureIsRead) {
  EXPECT_EQ(availability(), std::nullopt);
  executor.holdBackground();
  std::optional<ModelResponse> response;
  const auto task = keep(model->respond(request()), response);
  model.reset();
  executor.runHeldBackground();
  ASSERT_TRUE(response);
  EXPECT_EQ(answerOf(*response), ModelAnswer(AnalysisCancelled()));
}

TEST_F(LiveLanguageModelTest, AScreenshotIsDescribedFromEndToEnd) {
  ImageAnalysisService service(*model, executor);
  ollama.chat =
      FakeOllama::said(R"({"description":"Nikey login page — error","filename":"nikey login 2024 page.png"})");
  EXPECT_EQ(finish(service.describe(writePicture(), QStringLiteral(" Nike \n"))),
            DescribeOutcome(
                ScreenshotAnalysisResult{QStringLiteral("Nike login page, error"), QStringLiteral("Nike login page")}));
  const QString words =
      server.requests.back().json()[QLatin1String("messages")][1][QLatin1String("content")].toString();
  EXPECT_TRUE(words.endsWith(QStringLiteral("may contain errors:\nNike")));
}

TEST_F(LiveLanguageModelTest, ATextThatIsTooLongIsLeftOutInASecondQuestion) {
  ImageAnalysisService service(*model, executor);
  server.script = [this](const FakeRequest& request) {
    if (request.path == "/api/chat" && request.body.contains("Text recognized")) {
      return FakeOllama::error(400, "prompt too long");
    }
    return ollama(request);
  };
  const auto outcome = finish(service.describe(writePicture(), QStringLiteral("words")));
  EXPECT_TRUE(std::holds_alternative<ScreenshotAnalysisResult>(outcome));
}

}  // namespace
}  // namespace quillmere
