#include "platform/linux/sharing/ShareablePrograms.h"

#include <gio/gdesktopappinfo.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <algorithm>
#include <iterator>
#include <memory>

namespace quillmere {
namespace {

constexpr auto kOwn = "com.quillmere.app.desktop";
constexpr int kLongestName = 200;

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};

QString taken(char* text) {
  const QString result = QString::fromUtf8(text);
  g_free(text);
  return result;
}

/// In the icon theme, or a path. Of several names the first is the one that fits best.
QString nameOf(GIcon* icon) {
  if (!icon) return {};
  if (!G_IS_THEMED_ICON(icon)) return taken(g_icon_to_string(icon));
  return QString::fromUtf8(g_themed_icon_get_names(G_THEMED_ICON(icon))[0]);
}

/// A setting, a path or an identifier stands in the place of a name.
bool isTechnical(const QString& name) {
  static const QRegularExpression identifier(QStringLiteral("^[\\w-]+(\\.[\\w-]+){2,}$"));
  return name.isEmpty() || name.contains(QLatin1Char('=')) || name.startsWith(QLatin1Char('/')) ||
         name.endsWith(QLatin1String(".desktop")) || identifier.match(name).hasMatch();
}

bool canBeOpened(GDesktopAppInfo* info) {
  return g_app_info_get_commandline(G_APP_INFO(info)) || g_desktop_app_info_get_boolean(info, "DBusActivatable");
}

bool isForPeople(GDesktopAppInfo* info) {
  const char* id = g_app_info_get_id(G_APP_INFO(info));
  return id && qstrcmp(id, kOwn) != 0 && g_app_info_should_show(G_APP_INFO(info)) &&
         !g_desktop_app_info_get_boolean(info, "Terminal") && canBeOpened(info);
}

ShareTarget targetOf(GDesktopAppInfo* info) {
  GAppInfo* application = G_APP_INFO(info);
  const QString categories = QString::fromUtf8(g_desktop_app_info_get_categories(info));
  const bool isMail = categories.split(QLatin1Char(';')).contains(QLatin1String("Email"));
  return {QString::fromUtf8(g_app_info_get_id(application)),
          QString::fromUtf8(g_app_info_get_display_name(application)).left(kLongestName).simplified(),
          nameOf(g_app_info_get_icon(application)), isMail ? ShareTarget::Group::mail : ShareTarget::Group::program};
}

/// The desktop ids of all that take it.
QSet<QString> idsOf(const QString& contentType) {
  QSet<QString> ids;
  GList* infos = g_app_info_get_all_for_type(contentType.toUtf8().constData());
  for (const GList* one = infos; one; one = one->next) {
    ids.insert(QString::fromUtf8(g_app_info_get_id(G_APP_INFO(one->data))));
  }
  g_list_free_full(infos, g_object_unref);
  return ids;
}

}  // namespace

std::vector<ShareTarget> ShareablePrograms::find(const QStringList& contentTypes) {
  std::vector<ShareTarget> targets;
  if (contentTypes.isEmpty()) return targets;
  std::vector<QSet<QString>> others;
  for (const QString& type : QSet<QString>(std::next(contentTypes.begin()), contentTypes.end())) {
    if (type != contentTypes.front()) others.push_back(idsOf(type));
  }
  QSet<QString> names;
  QSet<QString> commands;
  GList* infos = g_app_info_get_all_for_type(contentTypes.front().toUtf8().constData());
  for (const GList* one = infos; one; one = one->next) {
    if (!G_IS_DESKTOP_APP_INFO(one->data)) continue;
    auto* info = G_DESKTOP_APP_INFO(one->data);
    if (!isForPeople(info)) continue;
    const ShareTarget target = targetOf(info);
    const auto isTaking = [&target](const QSet<QString>& ids) { return ids.contains(target.id); };
    if (!std::all_of(others.begin(), others.end(), isTaking)) continue;
    if (target.icon.isEmpty() || isTechnical(target.name)) continue;
    const QString name = target.name.toCaseFolded();
    const QString command = QString::fromUtf8(g_app_info_get_commandline(G_APP_INFO(info)));
    if (names.contains(name) || (!command.isEmpty() && commands.contains(command))) continue;
    names.insert(name);
    commands.insert(command);
    targets.push_back(target);
  }
  g_list_free_full(infos, g_object_unref);
  return targets;
}

QStringList ShareablePrograms::missing(const QStringList& ids) {
  QStringList gone;
  for (const QString& id : ids) {
    const std::unique_ptr<GDesktopAppInfo, Unref> info(g_desktop_app_info_new(id.toUtf8().constData()));
    if (!info) gone.append(id);
  }
  return gone;
}

}  // namespace quillmere
