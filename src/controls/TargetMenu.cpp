#include "controls/TargetMenu.h"

#include <QtGui/QIcon>
#include <QtWidgets/QMenu>

namespace quillmere {
namespace {

QIcon iconOf(const MenuTarget& target) {
  const bool isFile = target.icon.startsWith(QLatin1Char('/'));
  const QIcon icon = isFile ? QIcon(target.icon) : QIcon::fromTheme(target.icon);
  // A file that is no picture leaves the icon empty as well, and names would not stand below each other.
  if (!icon.isNull() && !icon.pixmap(16).isNull()) return icon;
  return QIcon::fromTheme(QStringLiteral("application-x-executable"));
}

/// In a menu a tab begins another column and an ampersand underlines a letter.
QString menuText(const QString& name, const QFontMetrics& metrics) {
  constexpr int kWidest = 320;
  QString text = metrics.elidedText(name.simplified(), Qt::ElideRight, kWidest);
  return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace

void addTargets(QMenu& menu, const std::vector<MenuTarget>& targets) {
  for (const MenuTarget& target : targets) {
    if (target.beginsGroup && !menu.isEmpty()) menu.addSeparator();
    menu.addAction(iconOf(target), menuText(target.name, menu.fontMetrics()))->setData(target.id);
  }
}

}  // namespace quillmere
