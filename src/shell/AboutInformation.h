#pragma once

#include <QtCore/QString>
#include <vector>

namespace quillmere {

/// One that the program is built from.
struct LinkedLibrary {
  QString name;
  QString licence;  ///< as SPDX writes it; empty where it is not known

  bool operator==(const LinkedLibrary&) const = default;
};

/// What the program can say of itself.
struct AboutInformation {
  QString version;
  QString build;  ///< its number; empty without one
  std::vector<LinkedLibrary> libraries;

  QString versionLine() const;
  static QString copyright();
};

}  // namespace quillmere
