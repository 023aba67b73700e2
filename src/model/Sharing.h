#pragma once

#include <QtCore/QStringList>
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
  /// Those that take pictures of every one of these types, group by group, and in each the one that was used last
  /// first.
  virtual Task<std::vector<ShareTarget>> targets(QStringList contentTypes) = 0;
  /// All at once: one message, one start of a program. Whether they were taken; where one of them is gone, none is.
  virtual Task<bool> share(std::vector<PreparedTransfer> transfers, QString targetID) = 0;
};

}  // namespace quillmere
