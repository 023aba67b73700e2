#include "controls/StyleIcons.h"

#include "controls/Metrics.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

QString symbolFor(QStyle::StandardPixmap which, bool isMirrored) {
  switch (which) {
    case QStyle::SP_ArrowBack:
    case QStyle::SP_FileDialogBack:
      return isMirrored ? QStringLiteral("chevron.right") : QStringLiteral("chevron.left");
    case QStyle::SP_ArrowForward:
      return isMirrored ? QStringLiteral("chevron.left") : QStringLiteral("chevron.right");
    case QStyle::SP_FileDialogToParent:
      return QStringLiteral("arrow.up");
    case QStyle::SP_FileDialogNewFolder:
      return QStringLiteral("folder.badge.plus");
    case QStyle::SP_FileDialogListView:
      return QStringLiteral("square.grid");
    case QStyle::SP_FileDialogDetailedView:
      return QStringLiteral("list.bullet");
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirLinkIcon:
    case QStyle::SP_DirOpenIcon:
    case QStyle::SP_DirHomeIcon:
      return QStringLiteral("folder");
    case QStyle::SP_ComputerIcon:
    case QStyle::SP_DesktopIcon:
      return QStringLiteral("computer");
    case QStyle::SP_FileIcon:
    case QStyle::SP_FileLinkIcon:
      return QStringLiteral("document");
    default:
      return {};
  }
}

}  // namespace

QIcon styleIcon(QStyle::StandardPixmap which, Qt::LayoutDirection direction, const QPalette& palette) {
  const QString symbol = symbolFor(which, direction == Qt::RightToLeft);
  if (symbol.isEmpty()) return {};
  const Theme theme(palette);
  QIcon icon;
  for (const int side : {Metrics::kSmallSymbol, 24, 32, 48}) {
    icon.addPixmap(symbolPixmap(symbol, side, theme.secondaryText, 1));
    icon.addPixmap(symbolPixmap(symbol, side, theme.onAccent, 1), QIcon::Selected);
    icon.addPixmap(symbolPixmap(symbol, side, theme.disabledText, 1), QIcon::Disabled);
  }
  return icon;
}

}  // namespace quillmere
