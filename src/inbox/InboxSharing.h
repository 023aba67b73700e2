#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include "inbox/InboxPresentation.h"

class QMenu;

namespace quillmere {

/// The applications as items of a menu, each with its id as data.
void addShareTargets(QMenu& menu, const std::vector<ShareTarget>& targets);

/// Sends the files of screenshots to other applications.
class InboxSharing {
 public:
  explicit InboxSharing(InboxPresentation& presentation) : presentation_(presentation) {}

  /// The applications for what is selected, in a menu below `anchor`.
  void openMenu(QWidget& anchor);
  /// The applications that take all of these.
  Task<std::vector<ShareTarget>> targets(const std::vector<UUID>& ids);
  /// A failure is shown in the Inbox.
  void share(const std::vector<UUID>& ids, const QString& targetID);

 private:
  static Task<> runMenu(Weak<InboxSharing> self, QPointer<QWidget> anchor);
  static Task<> run(Weak<InboxSharing> self, std::vector<UUID> ids, QString targetID);

  InboxPresentation& presentation_;
  bool isChoosing_ = false;
  Lifetime lifetime_;
};

}  // namespace quillmere
