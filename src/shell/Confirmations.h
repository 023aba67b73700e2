#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Questions that stand on their own, asked modally. Return cancels: it must never do what cannot be undone.
namespace Confirmations {

bool quit(int waitingScreenshots);
bool deletion(const QString& fileName);
/// Whether every screenshot of the desktop is to be saved in the folder of this name.
bool savingScreenshotsIn(const QString& folder);

}  // namespace Confirmations
}  // namespace quillmere
