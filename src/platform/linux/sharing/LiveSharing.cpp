#include "platform/linux/sharing/LiveSharing.h"

// Before Qt, whose macro takes the name of a field in it.
#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include "foundation/Localized.h"
#include "platform/linux/sharing/EmailComposer.h"

namespace quillmere {
namespace {

const QString kEmail = QStringLiteral("email");

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

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

ShareTarget targetOf(GAppInfo* info) {
  return {QString::fromUtf8(g_app_info_get_id(info)), QString::fromUtf8(g_app_info_get_display_name(info)),
          nameOf(g_app_info_get_icon(info))};
}

/// The desktop's own choice first.
std::vector<ShareTarget> applicationsFor(const QString& contentType) {
  std::vector<ShareTarget> targets;
  GList* infos = g_app_info_get_all_for_type(contentType.toUtf8().constData());
  for (const GList* one = infos; one; one = one->next) {
    auto* info = G_APP_INFO(one->data);
    if (g_app_info_get_id(info) && g_app_info_should_show(info)) targets.push_back(targetOf(info));
  }
  g_list_free_full(infos, g_object_unref);
  return targets;
}

bool open(const QString& id, const FileURL& file) {
  const Owned<GDesktopAppInfo> info(g_desktop_app_info_new(id.toUtf8().constData()));
  if (!info) return false;
  const Owned<GFile> target(g_file_new_for_path(file.c_str()));
  GList* files = g_list_append(nullptr, target.get());
  const bool isOpened = g_app_info_launch(G_APP_INFO(info.get()), files, nullptr, nullptr);
  g_list_free(files);
  return isOpened;
}

}  // namespace

Task<std::vector<ShareTarget>> LiveSharing::targets(QString contentType) {
  auto looking = executor_.background([contentType] {
    std::vector<ShareTarget> targets = applicationsFor(contentType);
    if (EmailComposer::isAvailable()) {
      targets.insert(targets.begin(), {kEmail, localized("Mail"), QStringLiteral("mail-message-new")});
    }
    return targets;
  });
  auto targets = co_await looking;
  co_return targets;
}

Task<bool> LiveSharing::share(PreparedTransfer transfer, QString targetID) {
  auto opening = executor_.background([transfer, targetID] {
    // An application that is opened with a file that is gone would complain, or show nothing.
    if (::access(transfer.file.c_str(), R_OK) != 0) return false;
    return targetID == kEmail ? EmailComposer::compose(transfer.file) : open(targetID, transfer.file);
  });
  const bool isTaken = co_await opening;
  co_return isTaken;
}

}  // namespace quillmere
