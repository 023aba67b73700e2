#pragma once

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include "support/MockBus.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// tests/support/update_server.py, from its making to its end.
class UpdateServer {
 public:
  UpdateServer()
      : process_(startHelper(QStringLiteral("/usr/bin/python3"),
                             {QStringLiteral("-B"), QStringLiteral(QUILLMERE_UPDATE_SERVER), path()},
                             QProcessEnvironment::systemEnvironment())) {
    EXPECT_TRUE(process_->waitForReadyRead()) << process_->readAllStandardError().toStdString();
    ports_ = QJsonDocument::fromJson(process_->readLine()).object();
  }
  ~UpdateServer() { stopHelper(*process_); }

  QString path() const { return QString::fromStdString(folder_.path()); }
  QString authority() const { return path() + QStringLiteral("/authority.pem"); }
  void serve(const char* name, const QByteArray& bytes) const {
    QFile file(path() + QStringLiteral("/files/") + QLatin1String(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  QUrl url(const char* path, const char* server = "secure") const {
    const bool isPlain = QLatin1String(server) == QLatin1String("plain");
    return QUrl(QStringLiteral("%1://localhost:%2%3")
                    .arg(isPlain ? QStringLiteral("http") : QStringLiteral("https"))
                    .arg(port(server))
                    .arg(QLatin1String(path)));
  }
  int port(const char* server) const { return ports_.value(QLatin1String(server)).toInt(); }
  /// How many requests came to that server.
  int requestsTo(const char* server) const {
    QFile file(path() + QStringLiteral("/requests"));
    if (!file.open(QIODevice::ReadOnly)) return 0;
    int count = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
      if (line.startsWith(QByteArray::number(port(server)) + ' ')) ++count;
    }
    return count;
  }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<QProcess> process_;
  QJsonObject ports_;
};

}  // namespace quillmere::testing
