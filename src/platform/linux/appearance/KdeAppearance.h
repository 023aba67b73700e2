#pragma once

#include <QtCore/QFileSystemWatcher>
#include <functional>
#include <string_view>

#include "controls/Appearance.h"

namespace quillmere {

/// From the text of KDE's "kdeglobals".
Appearance kdeAppearance(std::string_view settings);

/// Follows that file.
class KdeAppearance {
 public:
  KdeAppearance(QString file, std::function<void(const Appearance&)> told);

 private:
  void read();

  QString file_;
  std::function<void(const Appearance&)> told_;
  QFileSystemWatcher watcher_;
};

}  // namespace quillmere
