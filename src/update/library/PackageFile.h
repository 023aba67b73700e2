#pragma once

#include <QtCore/QByteArray>
#include <memory>

#include "foundation/FileURL.h"
#include "update/library/PackageSeal.h"

namespace quillmere {

/// A package on the disk, in a folder that only this person can enter. Folder and file go with it.
class PackageFile {
 public:
  /// In a new folder within `parent`, which is made where it is missing. Null where that can't be.
  static std::shared_ptr<PackageFile> make(const FileURL& parent, const QString& name, PackageSeal seal);
  ~PackageFile();
  PackageFile(const PackageFile&) = delete;
  PackageFile& operator=(const PackageFile&) = delete;

  bool append(const QByteArray& bytes);
  /// Whether what was written is on the disk and unbroken. Not on the main thread.
  bool isWholeAndGenuine() const;
  /// Whether the open file is the one that stands at its name.
  bool isAtItsPlace() const;

  const FileURL& place() const { return place_; }
  const PackageSeal& seal() const { return seal_; }
  int descriptor() const { return descriptor_; }

  /// What runs that were cut off have left in `parent`.
  static void removeLeftovers(const FileURL& parent);

 private:
  PackageFile(FileURL place, int descriptor, PackageSeal seal);

  FileURL place_;
  int descriptor_;
  PackageSeal seal_;
};

/// Under what name a package is stored: its version and, so that an installer knows its kind, the kind's suffix.
QString packageName(const QString& address, const QString& version);

}  // namespace quillmere
