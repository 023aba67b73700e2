#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "analysis/LocalHttpClient.h"
#include "analysis/ModelServer.h"
#include "description/LanguageModel.h"
#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "reading/PictureReading.h"

namespace quillmere {

/// Who listens at an address.
struct ServerListener {
  bool isKnown = false;                       ///< somebody does, and it could be told who
  std::optional<ForeignModelServer> foreign;  ///< where it is neither this person nor a service of the system
};

/// Where a model server may be.
struct ModelServerPlaces {
  std::function<std::optional<QString>()> configured;  ///< what the person has set
  std::function<std::optional<QString>()> environment = &environmentAddress;
  std::vector<LocalServerAddress> usual = usualAddresses();
  /// Others on this machine can open a port, too, to see what is sent there.
  std::function<ServerListener(const LocalServerAddress&)> listener;
  /// Whether this person has allowed the foreign server of this key.
  std::function<bool(const QString& key)> isAllowed;

  static std::vector<LocalServerAddress> usualAddresses();
  /// What Ollama's own programs go by.
  static std::optional<QString> environmentAddress();
};

/// The language model of a server that runs on this machine. It remembers where it found one and looks anew when asked
/// whether there is one, when that one fails, or when the settings change. Main thread.
class LiveLanguageModel final : public LanguageModel {
 public:
  /// The executor outlives this. What is under way when this goes is dropped with those who wait for it.
  LiveLanguageModel(Executor& executor, std::shared_ptr<PictureReading> pictures, ModelServerPlaces places,
                    std::function<Date()> now);

  /// Not eligible without a server, not enabled without a model that sees pictures, not ready while it is loaded.
  Task<std::optional<AnalysisError::Unavailability>> availability() override;
  Task<ModelResponse> respond(ModelRequest request) override;
  std::optional<ForeignModelServer> foreignServer() const override;

  /// In the order in which they are asked; whatever was named that is not of this machine is not among them.
  std::vector<LocalServerAddress> addresses() const;

 private:
  struct Found {
    FoundModel model;
    LocalServerAddress address;
    std::vector<LocalServerAddress> lookedAt;  ///< all addresses of that time
    std::optional<ForeignModelServer> foreign;
  };
  using Finding = Result<Found, AnalysisError::Unavailability>;
  using Self = Weak<LiveLanguageModel>;

  static Task<std::optional<AnalysisError::Unavailability>> availability(Self self);
  static Task<ModelResponse> respond(Self self, ModelRequest request);
  /// What is remembered, or what a look brings.
  static Task<Finding> find(Self self);
  static Task<Finding> lookEverywhere(Self self);
  static Task<ModelServerLook> look(Self self, LocalServerAddress address);
  static Task<ModelResponse> ask(Self self, Found found, ModelRequest request);

  bool mayBeAsked(const ServerListener& listener) const;

  Executor& executor_;
  std::shared_ptr<PictureReading> pictures_;
  ModelServerPlaces places_;
  std::function<Date()> now_;
  std::optional<Found> found_;
  std::optional<ForeignModelServer> refused_;  ///< of the last look
  uint64_t looks_ = 0;                         ///< begun so far
  LocalHttpClient client_;
  Lifetime lifetime_;
};

}  // namespace quillmere
