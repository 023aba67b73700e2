#pragma once

#include "analysis/ModelServer.h"

namespace quillmere {

/// Ollama, by its own protocol.
class OllamaServer final : public ModelServer {
 public:
  /// Finds the first model that sees pictures and runs on this machine.
  Task<ModelServerLook> look(LocalHttpClient& client, LocalServerAddress address) const override;
  HttpRequest question(const ModelRequest& request, const ModelPicture& picture, const QString& model) const override;
  ModelResponse answer(const HttpReply& reply, Date now) const override;
};

}  // namespace quillmere
