#include "platform/linux/choosing/DocumentPaths.h"

#include <sys/xattr.h>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <array>
#include <climits>

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.portal.Documents");
const QString kPath = QStringLiteral("/org/freedesktop/portal/documents");
using PathsById = QMap<QString, QByteArray>;

/// Up to the zero that may end it.
FileURL pathIn(std::string_view bytes) {
  return FileURL::fromPath(bytes.substr(0, bytes.find('\0')));
}

/// As newer portals tell it of each of their files and folders.
FileURL hostPath(const FileURL& file) {
  std::array<char, PATH_MAX> value{};
  const ssize_t length = ::getxattr(file.c_str(), "user.document-portal.host-path", value.data(), value.size());
  return length > 0 ? pathIn(std::string_view(value.data(), static_cast<size_t>(length))) : FileURL();
}

bool isBelow(const FileURL& file, const FileURL& folder) {
  return file.path().starts_with(folder.path() + "/");
}

FileURL below(const FileURL& folder, const FileURL& from, const FileURL& file) {
  const std::string rest = file.path().substr(from.path().size());
  return FileURL::fromPath(folder.path() + rest).standardized();
}

}  // namespace

DocumentPaths::DocumentPaths(const QDBusConnection& bus, FileURL mountPoint)
    : mountPoint_(std::move(mountPoint)),
      portal_(bus, kName, {[this](BusService& portal) { running_ = &portal; }, [this] { running_ = nullptr; }}) {
  qDBusRegisterMetaType<PathsById>();
}

void DocumentPaths::resolve(const FileURL& file, const std::function<void(const FileURL&)>& told) {
  if (mountPoint_.isEmpty() || !isBelow(file, mountPoint_)) return told(file);
  // A new file has no attributes yet, but its folder has.
  for (FileURL known = file; isBelow(known, mountPoint_); known = known.parent()) {
    if (const FileURL host = hostPath(known); !host.isEmpty()) return told(below(host, known, file));
  }
  if (!running_) return told(file);
  // …/doc/ID/NAME/…: the portal tells the place of NAME.
  const std::string rest = file.path().substr(mountPoint_.path().size() + 1);
  const std::string id = rest.substr(0, rest.find('/'));
  const FileURL document = mountPoint_.appending(id);
  const size_t end = rest.find('/', std::min(rest.size(), id.size() + 1));
  const FileURL lent = FileURL::fromPath(mountPoint_.path() + "/" + rest.substr(0, end));
  const QString key = QString::fromStdString(id);
  running_->call(
      kPath, kName, QStringLiteral("GetHostPaths"), {QStringList{key}},
      [=](const QVariantList& arguments) {
        const QByteArray bytes = qdbus_cast<PathsById>(arguments.value(0)).value(key);
        const FileURL host = pathIn(std::string_view(bytes.data(), static_cast<size_t>(bytes.size())));
        told(host.isEmpty() || lent == document ? file : below(host, lent, file));
      },
      [=] { told(file); });
}

}  // namespace quillmere
