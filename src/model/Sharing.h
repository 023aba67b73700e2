#pragma once

#include <vector>

#include "foundation/Task.h"
#include "model/ScreenshotTransfer.h"

namespace quillmere {

/// Somewhere a picture can be sent to.
struct ShareTarget {
  /// In the order in which they stand in a menu.
  enum class Group { mail, program };
  QString id;
  QString name;  ///< as the person knows it
  QString icon;  ///< of the desktop's icon theme, or a path; may be empty
  Group group = Group::program;
};

/// Sends pictures to other applications, as the person chooses.
class Sharing {
 public:
  virtual ~Sharing() = default;
  /// Those that take pictures of this type, group by group, and in each the one that was used last first.
  virtual Task<std::vector<ShareTarget>> targets(QString contentType) = 0;
  /// Whether it was taken.
  virtual Task<bool> share(PreparedTransfer transfer, QString targetID) = 0;
};

}  // namespace quillmere
