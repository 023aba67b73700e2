#include "shell/Endpoints.h"

#include <QtGui/QDesktopServices>

namespace quillmere::Endpoints {

QUrl website() {
  return QUrl(QStringLiteral("https://quillmere.example/"));
}

QUrl support() {
  return QUrl(QStringLiteral("https://quillmere.example/support"));
}

QUrl privacyPolicy() {
  return QUrl(QStringLiteral("https://quillmere.example/privacy"));
}

QUrl supportMail() {
  return QUrl(QStringLiteral("mailto:support@quillmere.example"));
}

void open(const QUrl& url) {
  QDesktopServices::openUrl(url);
}

}  // namespace quillmere::Endpoints
