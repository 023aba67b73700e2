#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QRect>
#include <vector>

/// What sway's bars leave of its outputs, which it tells X clients nothing of; by its own socket, whose messages are
/// described in sway-ipc(7).
namespace quillmere::SwayWorkspaces {

/// The places of the visible workspaces in the list that sway gives, in its coordinates, which are also those of its X
/// server; empty where the bytes are no such list.
std::vector<QRect> visible(const QByteArray& list);
/// The part of the screen that its workspace has; the screen where none lies on it.
QRect within(const QRect& screen, const std::vector<QRect>& workspaces);

/// Asks the sway of this session; empty without one, or where it does not answer at once.
std::vector<QRect> ask();

}  // namespace quillmere::SwayWorkspaces
