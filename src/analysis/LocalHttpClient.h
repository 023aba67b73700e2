#pragma once

#include <QtCore/QByteArray>
#include <memory>
#include <unordered_set>

#include "analysis/HttpReply.h"
#include "analysis/LocalServerAddress.h"
#include "foundation/Executor.h"
#include "foundation/Result.h"
#include "foundation/Task.h"

namespace quillmere {

class HttpExchange;

struct HttpRequest {
  QByteArray method = "GET";
  QByteArray path = {};
  QByteArray body = {};  ///< JSON, if any
};

enum class HttpFailure {
  cancelled,
  unreachable,  ///< nobody listens there
  lost,         ///< the connection ended before the answer did
  timedOut,
  malformed,
  tooLarge,
};
using HttpOutcome = Result<HttpReply, HttpFailure>;

/// Asks servers of this machine, one connection for each question. Follows no redirect, sends no cookies and uses no
/// proxy: Qt's own client would do all three, and knows no local sockets. Main thread.
class LocalHttpClient {
 public:
  explicit LocalHttpClient(Executor& executor);
  /// What is under way is dropped with those who wait for it.
  ~LocalHttpClient();

  /// `limit` is the time until the whole answer is there. Cancelling closes the connection at once.
  Task<HttpOutcome> send(LocalServerAddress address, HttpRequest request, Duration limit);
  /// How many exchanges are not over yet.
  size_t underWay() const { return running_.size(); }

 private:
  class Sending;
  Executor& executor_;
  std::unordered_set<std::shared_ptr<HttpExchange>> running_;
};

/// As it goes over the wire.
QByteArray encodedRequest(const HttpRequest& request, const LocalServerAddress& address);

}  // namespace quillmere
