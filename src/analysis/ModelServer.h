#pragma once

#include <QtCore/QString>
#include <variant>

#include "analysis/LocalHttpClient.h"
#include "analysis/ModelPicture.h"
#include "description/LanguageModel.h"
#include "foundation/Executor.h"
#include "foundation/Result.h"

namespace quillmere {

class ModelServer;

/// What a look at an address found.
struct NoModelServer {
  bool isSilent = false;  ///< nobody answers there, whatever the protocol
};
struct LoadingModelServer {};
struct BlindModelServer {};  ///< it runs, but has no model that sees pictures, or none for us
struct FoundModel {
  const ModelServer* server = nullptr;
  QString name;
};
using ModelServerLook = std::variant<NoModelServer, LoadingModelServer, BlindModelServer, FoundModel>;

using ModelResponse = Result<ModelAnswerFields, ModelFailure>;

/// How one kind of server is spoken to: which requests, and what its replies mean. Has no state of its own.
class ModelServer {
 public:
  virtual ~ModelServer() = default;
  virtual Task<ModelServerLook> look(LocalHttpClient& client, LocalServerAddress address) const = 0;
  /// Any thread: a picture in it makes it long.
  virtual HttpRequest question(const ModelRequest& request, const ModelPicture& picture,
                               const QString& model) const = 0;
  /// Any thread. Of a reply to the question.
  virtual ModelResponse answer(const HttpReply& reply, Date now) const = 0;
};

}  // namespace quillmere
