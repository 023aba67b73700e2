#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Questions that stand on their own, asked modally. Return cancels: it must never do what cannot be undone.
namespace Confirmations {

/// What quitting would leave behind.
struct QuitConcerns {
  int waitingScreenshots = 0;
  bool isNotSaved = false;  ///< the list could not be written
};
bool quit(const QuitConcerns& concerns);
bool deletion(const QString& fileName);
/// Whether every screenshot of the desktop is to be saved in the folder of this name.
bool savingScreenshotsIn(const QString& folder);

}  // namespace Confirmations
}  // namespace quillmere
