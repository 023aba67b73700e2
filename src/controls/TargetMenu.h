#pragma once

#include <QtCore/QString>
#include <vector>

class QMenu;

namespace quillmere {

/// A program in a menu of programs.
struct MenuTarget {
  QString id;
  QString name;  ///< shown as it is, and shortened where it is very long
  QString icon;  ///< of the desktop's icon theme, or a path
  bool beginsGroup = false;
};

/// Adds an action for each, with its id as the action's data.
void addTargets(QMenu& menu, const std::vector<MenuTarget>& targets);

}  // namespace quillmere
