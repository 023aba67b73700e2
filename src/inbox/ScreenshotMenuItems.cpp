#include "inbox/ScreenshotMenuItems.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>

#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

using Command = ScreenshotCommand;

QIcon menuIcon(const QMenu& menu, const QString& symbol) {
  if (symbol.isEmpty()) return {};
  const Theme theme(menu.palette());
  const qreal ratio = menu.devicePixelRatioF();
  QIcon icon(symbolPixmap(symbol, Metrics::kSmallSymbol, theme.text, ratio));
  icon.addPixmap(symbolPixmap(symbol, Metrics::kSmallSymbol, theme.disabledText, ratio), QIcon::Disabled);
  icon.addPixmap(symbolPixmap(symbol, Metrics::kSmallSymbol, theme.onAccent, ratio), QIcon::Active);
  return icon;
}

}  // namespace

ScreenshotMenuItems::ScreenshotMenuItems(QMenu& menu, Source source, InboxSharing& sharing, Keys keys)
    : QObject(&menu), menu_(menu), source_(std::move(source)), sharing_(sharing) {
  const ScreenshotActionsMenu commands = source_();
  for (int i = 0; i <= static_cast<int>(Command::deleteImmediately); ++i) {
    addItem(commands.action(static_cast<Command>(i)), keys);
  }
  menu.setToolTipsVisible(true);
  connect(&menu, &QMenu::aboutToShow, this, [this] {
    refresh();
    fillTargets(lifetime_.weak(this)).detach();
  });
  refresh();
}

void ScreenshotMenuItems::addItem(const ScreenshotAction& action, Keys keys) {
  if (action.beginsGroup) menu_.addSeparator();
  QAction* item = nullptr;
  if (action.command == Command::markTemporary) {
    QMenu* durations = menu_.addMenu(action.title);
    fillDurations(*durations);
    item = durations->menuAction();
  } else if (action.command == Command::share) {
    targets_ = menu_.addMenu(action.title);
    connect(targets_, &QMenu::triggered, this, [this](const QAction* chosen) {
      if (chosen->data().isValid()) sharing_.share(shared_, chosen->data().toString());
    });
    forgetTargets();
    item = targets_->menuAction();
  } else {
    item = menu_.addAction(action.title);
    connect(item, &QAction::triggered, this, [this, command = action.command] { source_().perform(command); });
  }
  item->setShortcuts(action.keys);
  // A menu is no widget that has the keyboard: such keys are seen and never fire.
  if (keys == Keys::shown) item->setShortcutContext(Qt::WidgetShortcut);
  // What is held down was pressed once.
  item->setAutoRepeat(false);
  items_[action.command] = item;
}

void ScreenshotMenuItems::fillDurations(QMenu& submenu) {
  for (const TemporaryDuration duration : kTemporaryDurations) {
    submenu.addAction(menuText(duration), this, [this, duration] { source_().markTemporary(duration); });
  }
}

void ScreenshotMenuItems::refresh() {
  const ScreenshotActionsMenu commands = source_();
  const auto present = commands.actions();
  for (const auto& [command, item] : items_) {
    const auto action = std::find_if(present.begin(), present.end(),
                                     [command = command](const auto& each) { return each.command == command; });
    item->setVisible(action != present.end());
    if (action == present.end()) continue;
    item->setText(action->title);
    item->setToolTip(action->help);
    item->setIcon(menuIcon(menu_, action->symbol));
    item->setEnabled(action->isEnabled);
  }
}

/// Those of another selection may not take what is selected now.
void ScreenshotMenuItems::forgetTargets() {
  targets_->clear();
  targets_->addAction(localized("Looking for Apps…"))->setEnabled(false);
}

/// The applications are looked for when the menu opens, which is before its submenu does.
Task<> ScreenshotMenuItems::fillTargets(Weak<ScreenshotMenuItems> self) {
  self->forgetTargets();
  const auto ids = self->source_().readable();
  self->shared_ = ids;
  if (ids.empty()) co_return;
  const auto looking = self->sharing_.targets(ids);
  const auto targets = co_await looking;
  if (!self || self->shared_ != ids) co_return;
  QMenu& menu = *self->targets_;
  menu.clear();
  addShareTargets(menu, targets);
}

}  // namespace quillmere
