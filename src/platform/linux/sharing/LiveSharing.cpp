#include "platform/linux/sharing/LiveSharing.h"

// Before Qt, whose macro takes the name of a field in it.
#include <gio/gdesktopappinfo.h>
#include <unistd.h>
#include <algorithm>

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

/// All in one start, where the program takes several at a time.
bool open(const QString& id, const std::vector<FileURL>& files) {
  const Owned<GDesktopAppInfo> info(g_desktop_app_info_new(id.toUtf8().constData()));
  if (!info) return false;
  GList* list = nullptr;
  for (const FileURL& file : files) list = g_list_append(list, g_file_new_for_path(file.c_str()));
  const bool isOpened = g_app_info_launch(G_APP_INFO(info.get()), list, nullptr, nullptr);
  g_list_free_full(list, g_object_unref);
  return isOpened;
}

/// A program that is opened with a file that is gone would complain, or show nothing.
bool canBeRead(const FileURL& file) {
  return ::access(file.c_str(), R_OK) == 0;
}

}  // namespace

Task<std::vector<ShareTarget>> LiveSharing::targets(QStringList contentTypes) {
  struct Found {
    std::vector<ShareTarget> targets;
    QStringList gone;
  };
  const auto self = lifetime_.weak(this);
  auto looking = executor_.background([contentTypes, recent = recent_.ids(), bus = bus_] {
    Found found{ShareablePrograms::find(contentTypes), ShareablePrograms::missing(recent)};
    if (EmailComposer::isAvailable(bus)) {
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

Task<bool> LiveSharing::share(std::vector<PreparedTransfer> transfers, QString targetID) {
  const auto self = lifetime_.weak(this);
  auto opening = executor_.background([transfers, targetID, bus = bus_] {
    std::vector<FileURL> files;
    for (const PreparedTransfer& transfer : transfers) files.push_back(transfer.file);
    if (files.empty() || !std::all_of(files.begin(), files.end(), canBeRead)) return false;
    return targetID == kEmail ? EmailComposer::compose(bus, files) : open(targetID, files);
  });
  const bool isTaken = co_await opening;
  if (isTaken && self && targetID != kEmail) self->recent_.note(targetID);
  co_return isTaken;
}

}  // namespace quillmere
