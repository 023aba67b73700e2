#pragma once

#include <QtCore/QUrl>

namespace quillmere {

/// Where the makers of the program can be reached. Every address that the program opens stands here.
namespace Endpoints {

QUrl website();
QUrl support();
QUrl privacyPolicy();
/// A new message to the makers.
QUrl supportMail();

/// Has the desktop open it, in the browser or the mail program.
void open(const QUrl& url);

}  // namespace Endpoints
}  // namespace quillmere
