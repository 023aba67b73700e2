#include "platform/linux/choosing/PortalOptions.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

struct Pattern {
  uint kind = 0;  ///< a glob; 1 would be a MIME type
  QString text;
};
struct Filter {
  QString name;
  QList<Pattern> patterns;
};

[[maybe_unused]] QDBusArgument& operator<<(QDBusArgument& out, const Pattern& pattern) {
  out.beginStructure();
  out << pattern.kind << pattern.text;
  out.endStructure();
  return out;
}
[[maybe_unused]] const QDBusArgument& operator>>(const QDBusArgument& in, Pattern& pattern) {
  in.beginStructure();
  in >> pattern.kind >> pattern.text;
  in.endStructure();
  return in;
}
[[maybe_unused]] QDBusArgument& operator<<(QDBusArgument& out, const Filter& filter) {
  out.beginStructure();
  out << filter.name << filter.patterns;
  out.endStructure();
  return out;
}
[[maybe_unused]] const QDBusArgument& operator>>(const QDBusArgument& in, Filter& filter) {
  in.beginStructure();
  in >> filter.name >> filter.patterns;
  in.endStructure();
  return in;
}

/// Paths are bytes, ended by a zero.
QByteArray portalPath(const FileURL& url) {
  return QByteArray(url.c_str(), static_cast<qsizetype>(url.path().size()) + 1);
}

}  // namespace

void registerPortalTypes() {
  qDBusRegisterMetaType<Pattern>();
  qDBusRegisterMetaType<QList<Pattern>>();
  qDBusRegisterMetaType<Filter>();
  qDBusRegisterMetaType<QList<Filter>>();
}

QString portalWindow(quintptr window) {
  if (window == 0 || QGuiApplication::platformName() != QLatin1String("xcb")) return {};
  return QStringLiteral("x11:") + QString::number(window, 16);
}

QVariantMap portalOptions(const FileDialogRequest& request, const QString& token) {
  QVariantMap options{{QStringLiteral("handle_token"), token},
                      {QStringLiteral("accept_label"), request.accept},
                      {QStringLiteral("modal"), true}};
  if (request.directory) options[QStringLiteral("current_folder")] = portalPath(*request.directory);
  if (request.kind == FileDialogRequest::Kind::folder) {
    options[QStringLiteral("directory")] = true;
    return options;
  }
  options[QStringLiteral("current_name")] = request.name;
  if (request.globs.isEmpty()) return options;
  Filter filter{request.typeName, {}};
  for (const QString& glob : request.globs) filter.patterns.append(Pattern{0, glob});
  options[QStringLiteral("filters")] = QVariant::fromValue(QList<Filter>{filter});
  options[QStringLiteral("current_filter")] = QVariant::fromValue(filter);
  return options;
}

}  // namespace quillmere
