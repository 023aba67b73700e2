#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::refreshLoginItemStatus() {
  loginItemStatus.set(dependencies_.loginItems->status());
}

void AppModel::setOpensAtLogin(bool opens) {
  LoginItemService& items = *dependencies_.loginItems;
  const auto problem = opens ? items.registerItem() : items.unregisterItem();
  refreshLoginItemStatus();
  if (!problem) return;
  show(ErrorScope::settings,
       opens ? localized("Couldn’t Turn On Launch at Login") : localized("Couldn’t Turn Off Launch at Login"),
       localized("%@ Check Quillmere in System Settings > General > Login Items & Extensions, then try again.",
                 {*problem}));
}

void AppModel::openLoginItemSettings() {
  dependencies_.loginItems->openSystemSettings();
}

}  // namespace quillmere
