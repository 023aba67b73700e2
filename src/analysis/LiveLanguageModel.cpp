#include "analysis/LiveLanguageModel.h"

#include <QtCore/QtGlobal>
#include <algorithm>
#include <array>
#include <utility>

#include "analysis/LlamaServer.h"
#include "analysis/ModelServerReplies.h"
#include "analysis/OllamaServer.h"
#include "foundation/Interruptible.h"

namespace quillmere {
namespace {

using Unavailability = AnalysisError::Unavailability;

constexpr uint16_t kOllamaPort = 11434;
constexpr uint16_t kLlamaPort = 8080;
/// A model of a few billion parameters describes a picture in this time even without a graphics card.
constexpr Duration kAnswerTime = std::chrono::seconds(60);

constexpr const char* kAddressVariable = "OLLAMA_HOST";

const OllamaServer kOllama;
const LlamaServer kLlama;
/// Ollama first: it answers the other's questions too, but not that about pictures.
constexpr std::array<const ModelServer*, 2> kServers{&kOllama, &kLlama};

/// The better of two reasons: the one that is nearer to a model.
Unavailability nearer(Unavailability reason, const ModelServerLook& look) {
  if (std::holds_alternative<LoadingModelServer>(look)) return Unavailability::modelNotReady;
  const bool isBlind = std::holds_alternative<BlindModelServer>(look);
  return isBlind && reason == Unavailability::deviceNotEligible ? Unavailability::appleIntelligenceNotEnabled : reason;
}

}  // namespace

std::vector<LocalServerAddress> ModelServerPlaces::usualAddresses() {
  return {LocalServerAddress::loopback(kOllamaPort), LocalServerAddress::loopback(kLlamaPort)};
}

std::optional<QString> ModelServerPlaces::environmentAddress() {
  const QString text = qEnvironmentVariable(kAddressVariable);
  return text.isEmpty() ? std::nullopt : std::optional(text);
}

LiveLanguageModel::LiveLanguageModel(Executor& executor, std::shared_ptr<PictureReading> pictures,
                                     ModelServerPlaces places, std::function<Date()> now)
    : executor_(executor),
      pictures_(std::move(pictures)),
      places_(std::move(places)),
      now_(std::move(now)),
      client_(executor) {}

std::vector<LocalServerAddress> LiveLanguageModel::addresses() const {
  std::vector<LocalServerAddress> addresses;
  const auto add = [&](const std::optional<LocalServerAddress>& address) {
    if (address && std::find(addresses.begin(), addresses.end(), *address) == addresses.end()) {
      addresses.push_back(*address);
    }
  };
  if (const auto named = places_.configured()) add(LocalServerAddress::parse(*named, kOllamaPort));
  if (const auto named = places_.environment()) add(LocalServerAddress::parseOfServer(*named, kOllamaPort));
  for (const auto& usual : places_.usual) add(usual);
  return addresses;
}

bool LiveLanguageModel::mayBeAsked(const ServerListener& listener) const {
  return listener.isKnown && (!listener.foreign || places_.isAllowed(listener.foreign->key));
}

std::optional<ForeignModelServer> LiveLanguageModel::foreignServer() const {
  return found_ ? found_->foreign : refused_;
}

Task<std::optional<Unavailability>> LiveLanguageModel::availability() {
  return availability(lifetime_.weak(this));
}

Task<ModelResponse> LiveLanguageModel::respond(ModelRequest request) {
  return respond(lifetime_.weak(this), std::move(request));
}

Task<std::optional<Unavailability>> LiveLanguageModel::availability(Self self) {
  // What was found earlier may have gone since.
  auto finding = interruptible(lookEverywhere(self));
  const Finding found = co_await finding;
  co_return found ? std::nullopt : std::optional(found.reason());
}

Task<LiveLanguageModel::Finding> LiveLanguageModel::find(Self self) {
  if (self->found_ && self->found_->lookedAt == self->addresses()) co_return *self->found_;
  auto finding = interruptible(lookEverywhere(self));
  const Finding found = co_await finding;
  co_return found;
}

Task<LiveLanguageModel::Finding> LiveLanguageModel::lookEverywhere(Self self) {
  const uint64_t generation = ++self->looks_;
  const auto addresses = self->addresses();
  Unavailability reason = Unavailability::deviceNotEligible;
  std::optional<Found> found;
  std::optional<ForeignModelServer> refused;
  for (size_t i = 0; i < addresses.size() && !found; ++i) {
    const ServerListener listener = self->places_.listener(addresses[i]);
    // Not even asked what it is: a stranger would learn that somebody looks.
    if (!self->mayBeAsked(listener)) {
      if (!refused) refused = listener.foreign;
      continue;
    }
    auto looking = interruptible(look(self, addresses[i]));
    const ModelServerLook seen = co_await looking;
    if (!self || co_await isCancelled) co_return reason;
    if (const auto* model = std::get_if<FoundModel>(&seen)) {
      found = Found{*model, addresses[i], addresses, listener.foreign};
    }
    reason = nearer(reason, seen);
  }
  // A slow look does not overwrite what a later one saw.
  if (generation == self->looks_) {
    self->found_ = found;
    self->refused_ = refused;
  }
  if (!found) co_return reason;
  co_return *found;
}

Task<ModelServerLook> LiveLanguageModel::look(Self self, LocalServerAddress address) {
  for (const ModelServer* server : kServers) {
    auto looking = interruptible(server->look(self->client_, address));
    const ModelServerLook seen = co_await looking;
    const auto* none = std::get_if<NoModelServer>(&seen);
    if (!self || !none || none->isSilent || co_await isCancelled) co_return seen;
  }
  co_return NoModelServer();
}

Task<ModelResponse> LiveLanguageModel::respond(Self self, ModelRequest request) {
  const bool wasRemembered = self->found_.has_value();
  for (int attempts = wasRemembered ? 2 : 1; attempts > 0; --attempts) {
    auto finding = interruptible(find(self));
    const Finding found = co_await finding;
    if (!self || co_await isCancelled) co_return ModelFailure(AnalysisCancelled());
    if (!found) co_return ModelFailure(AnalysisError::unavailable(found.reason()));
    auto asking = interruptible(ask(self, *found, request));
    ModelResponse response = co_await asking;
    if (!self || co_await isCancelled) co_return ModelFailure(AnalysisCancelled());
    if (response) co_return response;
    self->found_.reset();
    // Gone since it was found; another may have come in its place.
    const bool isGone = response.reason() == ModelServerReplies::failure(HttpFailure::unreachable);
    if (!isGone || attempts == 1) co_return response;
  }
  co_return ModelFailure(ModelError{});
}

Task<ModelResponse> LiveLanguageModel::ask(Self self, Found found, ModelRequest request) {
  // Reading the picture and coding it take long; so does a reply that means harm.
  auto preparing =
      self->executor_.background([found, request, pictures = self->pictures_]() -> std::optional<HttpRequest> {
        const auto picture = ModelPicture::read(*pictures, request.picture);
        if (!picture) return std::nullopt;
        return found.model.server->question(request, *picture, found.model.name);
      });
  const std::optional<HttpRequest> question = co_await preparing;
  if (!self || co_await isCancelled) co_return ModelFailure(AnalysisCancelled());
  if (!question) co_return ModelFailure(ModelError{ModelError::Kind::other});
  // Asked again: another may have taken the place since the look.
  if (!self->mayBeAsked(self->places_.listener(found.address)))
    co_return ModelServerReplies::failure(HttpFailure::unreachable);
  auto sending = interruptible(self->client_.send(found.address, *question, kAnswerTime));
  const HttpOutcome reply = co_await sending;
  if (!self) co_return ModelFailure(AnalysisCancelled());
  if (!reply) co_return ModelServerReplies::failure(reply.reason());
  auto reading = self->executor_.background(
      [found, answer = *reply, now = self->now_()] { return found.model.server->answer(answer, now); });
  ModelResponse response = co_await reading;
  co_return response;
}

}  // namespace quillmere
