#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QUrl>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/Executor.h"
#include "update/library/UpdateFailure.h"

namespace quillmere {

/// A file that is on its way. Cancelled when it goes; nothing is told any more then. May be destroyed from within what
/// it tells.
class Transfer {
 public:
  virtual ~Transfer() = default;
};

struct TransferRequest {
  QUrl url;
  qint64 mostBytes = 0;  ///< more end it
  Duration longest{};    ///< for the whole of it
  /// What came. False ends it: the bytes can't be kept.
  std::function<bool(const QByteArray& bytes)> take;
  /// Once, none when everything came.
  std::function<void(std::optional<UpdateFailure> failure)> ended;
};

/// The network, as an update needs it.
class UpdateTransport {
 public:
  virtual ~UpdateTransport() = default;
  virtual std::unique_ptr<Transfer> begin(TransferRequest request) = 0;
};

}  // namespace quillmere
