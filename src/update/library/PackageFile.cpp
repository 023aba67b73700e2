#include "update/library/PackageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "foundation/FileCopy.h"

namespace quillmere {
namespace {

constexpr const char* kFolderName = "update-";

}  // namespace

std::shared_ptr<PackageFile> PackageFile::make(const FileURL& parent, const QString& name, PackageSeal seal) {
  std::error_code ignored;  // shows when the folder in it is made
  std::filesystem::create_directories(parent.path(), ignored);
  std::string folder = parent.path() + "/" + kFolderName + "XXXXXX";
  if (!::mkdtemp(folder.data())) return nullptr;  // of permissions 0700
  const FileURL place = FileURL::fromPath(folder).appending(name.toStdString());
  constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(::open(place.c_str(), kFlags, 0600)));
  if (descriptor < 0) {
    ::rmdir(folder.c_str());
    return nullptr;
  }
  return std::shared_ptr<PackageFile>(new PackageFile(place, descriptor, std::move(seal)));
}

PackageFile::PackageFile(FileURL place, int descriptor, PackageSeal seal)
    : place_(std::move(place)), descriptor_(descriptor), seal_(std::move(seal)) {}

PackageFile::~PackageFile() {
  ::unlink(place_.c_str());
  ::rmdir(place_.parent().c_str());
  ::close(descriptor_);
}

bool PackageFile::append(const QByteArray& bytes) {
  return writeAll(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size()));
}

bool PackageFile::isWholeAndGenuine() const {
  return ::fsync(descriptor_) == 0 && seal_.isUnbroken(descriptor_) && isAtItsPlace();
}

bool PackageFile::isAtItsPlace() const {
  struct stat open {};
  struct stat named {};
  return ::fstat(descriptor_, &open) == 0 && ::lstat(place_.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

void PackageFile::removeLeftovers(const FileURL& parent) {
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(parent.path(), ignored)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(kFolderName) && !entry.is_symlink(ignored)) std::filesystem::remove_all(entry.path(), ignored);
  }
}

QString packageName(const QString& address, const QString& version) {
  constexpr std::array<const char*, 5> kKinds{".deb", ".rpm", ".pkg.tar.zst", ".pkg.tar.xz", ".AppImage"};
  for (const char* kind : kKinds) {
    if (address.endsWith(QLatin1String(kind)))
      return QStringLiteral("quillmere-%1%2").arg(version, QLatin1String(kind));
  }
  return QStringLiteral("quillmere-") + version;
}

}  // namespace quillmere
