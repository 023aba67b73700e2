#pragma once

#include <QtCore/QString>

#include "foundation/FileURL.h"

class QWidget;

namespace quillmere {

/// Questions that stand on their own, asked modally. Return cancels: it must never do what cannot be undone.
namespace Confirmations {

/// What quitting would leave behind.
struct QuitConcerns {
  int waitingScreenshots = 0;
  bool isNotSaved = false;  ///< the list could not be written
};
/// Over the window that has the keyboard, be it the popup; else over `window`, or by itself without one.
bool quit(const QuitConcerns& concerns, QWidget* window);
bool deletion(const QString& fileName);
/// Whether every screenshot of the desktop is to be saved in the folder of this name.
bool savingScreenshotsIn(const QString& folder);
/// Whether every record of the Inbox is to be forgotten.
bool clearingRecords();
/// Whether the folder is to be watched; asks about the home folder and the root of all folders only.
bool watching(const FileURL& folder, const FileURL& home);

}  // namespace Confirmations
}  // namespace quillmere
