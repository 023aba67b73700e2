#pragma once

#include <QtCore/QStringList>
#include <functional>
#include <string>

namespace quillmere {

/// What stands in an autostart entry (https://specifications.freedesktop.org/autostart-spec), a desktop entry that the
/// session starts.
namespace AutostartEntry {

/// One that starts the program at login; `program` is its place.
std::string startingAtLogin(const std::string& program);
/// The same, switched off: in the place of one that all users have, it hides that.
std::string hidden(const std::string& program);

/// The desktop that reads it, and whether a file can be started there.
struct Session {
  QStringList desktops;  ///< the names in XDG_CURRENT_DESKTOP
  std::function<bool(const std::string& program)> canStart;
};
/// Whether a session starts anything by it. What GNOME's tools write to switch one off counts too, although not every
/// session obeys that.
bool isOn(const std::string& text, const Session& session);

/// The program that a desktop entry starts, as it is named there; empty for none.
std::string programOf(const std::string& text);

}  // namespace AutostartEntry
}  // namespace quillmere
