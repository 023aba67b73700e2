#pragma once

#include <QtCore/QString>

namespace quillmere {

/// A model server of another person of this machine. It is asked nothing until this person says that it may be: it
/// would see the screenshots and their text.
struct ForeignModelServer {
  QString owner;    ///< the account's name
  QString address;  ///< as a person writes it
  QString key;      ///< account and address; what is remembered of one that is allowed
  bool operator==(const ForeignModelServer&) const = default;
};

}  // namespace quillmere
