#include "platform/linux/sharing/LiveSharing.h"

// Before Qt, whose macro takes the name of a field in it.
#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include "foundation/Localized.h"
#include "platform/linux/sharing/EmailComposer.h"
#include "platform/linux/sharing/ShareablePrograms.h"

namespace quillmere {
namespace {

const QString kEmail = QStringLiteral("email");

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

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
  struct Found {
    std::vector<ShareTarget> targets;
    QStringList gone;
  };
  const auto self = lifetime_.weak(this);
  auto looking = executor_.background([contentType, recent = recent_.ids()] {
    Found found{ShareablePrograms::find(contentType), ShareablePrograms::missing(recent)};
    if (EmailComposer::isAvailable()) {
      found.targets.insert(found.targets.begin(),
                           {kEmail, localized("Mail"), QStringLiteral("mail-message-new"), ShareTarget::Group::mail});
    }
    return found;
  });
  Found found = co_await looking;
  if (self) {
    self->recent_.forget(found.gone);
    self->recent_.sort(found.targets);
  }
  co_return found.targets;
}

Task<bool> LiveSharing::share(PreparedTransfer transfer, QString targetID) {
  const auto self = lifetime_.weak(this);
  auto opening = executor_.background([transfer, targetID] {
    // An application that is opened with a file that is gone would complain, or show nothing.
    if (::access(transfer.file.c_str(), R_OK) != 0) return false;
    return targetID == kEmail ? EmailComposer::compose(transfer.file) : open(targetID, transfer.file);
  });
  const bool isTaken = co_await opening;
  if (isTaken && self && targetID != kEmail) self->recent_.note(targetID);
  co_return isTaken;
}

}  // namespace quillmere
