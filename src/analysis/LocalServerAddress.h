#pragma once

#include <QtCore/QString>
#include <QtNetwork/QHostAddress>
#include <optional>
#include <variant>

#include "foundation/FileURL.h"

namespace quillmere {

/// Where a server of this machine listens. There is no way to make one of any other place, so that nothing which takes
/// one can send a screenshot away.
class LocalServerAddress {
 public:
  /// Reads "127.0.0.1:11434", "localhost", "[::1]:8080", each with or without "http://" and a slash at the end, or a
  /// socket's path with or without "unix:". A loopback address is taken only in its plain spelling and nothing is ever
  /// resolved: whatever else leads to this machine would have to be trusted to go on doing so. Without a port it is
  /// HTTP's own where the text names HTTP, else `usualPort`.
  static std::optional<LocalServerAddress> parse(const QString& text, uint16_t usualPort);
  /// The same for the address at which a server was told to listen: one that means every address of this machine, or
  /// that names a port alone, is the loopback one to us.
  static std::optional<LocalServerAddress> parseOfServer(const QString& text, uint16_t usualPort);
  static LocalServerAddress loopback(uint16_t port);

  struct Tcp {
    QHostAddress host;
    uint16_t port = 0;
    bool operator==(const Tcp&) const = default;
  };
  const Tcp* tcp() const { return std::get_if<Tcp>(&place_); }
  /// The socket's file, if it is one.
  const FileURL* socket() const { return std::get_if<FileURL>(&place_); }

  /// As a request names the host that it is for.
  QByteArray hostHeader() const;

  bool operator==(const LocalServerAddress&) const = default;

 private:
  using Place = std::variant<Tcp, FileURL>;
  explicit LocalServerAddress(Place place) : place_(std::move(place)) {}
  Place place_;
};

}  // namespace quillmere
