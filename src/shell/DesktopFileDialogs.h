#pragma once

#include <QtCore/QString>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// What a file dialog opens with.
struct FileDialogRequest {
  enum class Kind { folder, destination };
  Kind kind = Kind::folder;
  QString title;
  QString accept;  ///< the button's text
  std::optional<FileURL> directory;
  QString name = {};       ///< suggested for the destination
  QString typeName = {};   ///< of the one type that is offered; empty for any
  QStringList globs = {};  ///< its patterns
  quintptr owner = 0;      ///< the window that it belongs to, as the window system numbers it; 0 for none
};

/// How it ended. Cancelled is not unavailable: then another dialog has to do.
struct FileDialogEnd {
  enum class Kind { unavailable, cancelled, chosen };
  Kind kind = Kind::unavailable;
  FileURL chosen;

  bool operator==(const FileDialogEnd&) const = default;
};

/// The file dialogs that the desktop itself shows to the programs that ask for them.
class DesktopFileDialogs {
 public:
  /// One that is open; it is closed with this.
  class Dialog {
   public:
    virtual ~Dialog() = default;
  };
  virtual ~DesktopFileDialogs() = default;
  /// None where the desktop has no dialogs. Otherwise `ended` is told once, in a later turn of the loop.
  virtual std::unique_ptr<Dialog> open(const FileDialogRequest& request,
                                       std::function<void(const FileDialogEnd&)> ended) = 0;
};

}  // namespace quillmere
