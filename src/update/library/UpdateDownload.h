#pragma once

#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QSslConfiguration>

#include "update/library/UpdateTransport.h"

namespace quillmere {

/// Where a redirect may lead: to the same host and port, encrypted as before.
bool isSameServer(const QUrl& from, const QUrl& to);

/// How long a server may be silent, and how little it may send.
struct TransferPatience {
  std::chrono::milliseconds silence = std::chrono::seconds(30);
  Duration period = std::chrono::seconds(60);  ///< in each of these so many bytes come, or it is over
  qint64 leastBytes = qint64{64} * 1024;
};

/// Files over HTTPS and nothing else: no redirect to another server, no cookie, no cache, no compression.
/// Main thread.
class UpdateDownload final : public UpdateTransport {
 public:
  /// `authority` is a PEM file with the only certificate authority that counts; empty for those of the system.
  UpdateDownload(Executor& executor, const QString& authority, TransferPatience patience = {});
  std::unique_ptr<Transfer> begin(TransferRequest request) override;

  static constexpr int kMostRedirects = 3;

 private:
  class Live;
  Executor& executor_;
  TransferPatience patience_;
  QSslConfiguration security_;
  QNetworkAccessManager network_;
};

}  // namespace quillmere
