#pragma once

#include <QtCore/QStringList>
#include <vector>

#include "model/Sharing.h"

namespace quillmere {

/// The installed programs that a person would send a picture to. Both read files and are not for the main thread.
namespace ShareablePrograms {

/// Those that take every one of these types: with an icon and a name for people, each once, the desktop's own
/// choice for the first type first. Without
/// tools of the command line and those that their makers keep out of menus.
std::vector<ShareTarget> find(const QStringList& contentTypes);
/// Of these desktop ids the ones that are not installed any more.
QStringList missing(const QStringList& ids);

}  // namespace ShareablePrograms
}  // namespace quillmere
