#pragma once

#include <vector>

#include "foundation/Task.h"
#include "model/ScreenshotTransfer.h"

namespace quillmere {

/// Somewhere a picture can be sent to.
struct ShareTarget {
  QString id;
  QString name;  ///< as the person knows it
  QString icon;  ///< of the desktop's icon theme, or a path; may be empty
};

/// Sends pictures to other applications, as the person chooses.
class Sharing {
 public:
  virtual ~Sharing() = default;
  /// Those that take pictures of this type; e-mail first, where there is any.
  virtual Task<std::vector<ShareTarget>> targets(QString contentType) = 0;
  /// Whether it was taken.
  virtual Task<bool> share(PreparedTransfer transfer, QString targetID) = 0;
};

}  // namespace quillmere
