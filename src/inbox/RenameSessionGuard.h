#pragma once

#include <QtCore/QObject>

#include "inbox/InboxPresentation.h"

namespace quillmere {

/// What a rename is about, as it is now. All of it is empty without a session, and without its record.
struct RenameSubject {
  std::optional<QString> name;  ///< the stem
  std::optional<FileURL> url;
  bool isAvailable = false;

  static RenameSubject of(const InboxPresentation& presentation);
  bool operator==(const RenameSubject&) const = default;
};

/// Ends a rename, without renaming, when what it is about is not any more what it was, and when its window loses the
/// keyboard to another. Goes before either.
class RenameSessionGuard final : public QObject {
 public:
  RenameSessionGuard(InboxPresentation& presentation, QWidget& window);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void compare();

  InboxPresentation& presentation_;
  UUID token_;  ///< of the session that the subject is of
  RenameSubject subject_;
  Connection sessions_;
  Connection records_;
};

}  // namespace quillmere
