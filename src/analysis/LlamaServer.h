#pragma once

#include "analysis/ModelServer.h"

namespace quillmere {

/// llama.cpp's server, which has one model, by the common protocol for chats.
class LlamaServer final : public ModelServer {
 public:
  Task<ModelServerLook> look(LocalHttpClient& client, LocalServerAddress address) const override;
  HttpRequest question(const ModelRequest& request, const ModelPicture& picture, const QString& model) const override;
  ModelResponse answer(const HttpReply& reply, Date now) const override;
};

}  // namespace quillmere
