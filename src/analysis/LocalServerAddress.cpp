#include "analysis/LocalServerAddress.h"

#include <sys/un.h>
#include <QtCore/QStringList>
#include <algorithm>

namespace quillmere {
namespace {

constexpr uint16_t kHttpPort = 80;
const QString kHttp = QStringLiteral("http://");
const QString kUnix = QStringLiteral("unix:");

/// Plain decimal without a sign, blanks or a leading zero, which some readers take for octal.
std::optional<int> decimal(const QString& text, int most) {
  const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
  if (text.isEmpty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  if (text.size() > 1 && text.startsWith(QLatin1Char('0'))) return std::nullopt;
  const int number = text.toInt();
  return number <= most ? std::optional(number) : std::nullopt;
}

std::optional<QHostAddress> loopbackIPv4(const QString& text) {
  quint32 address = 0;
  const QStringList parts = text.split(QLatin1Char('.'));
  if (parts.size() != 4 || parts.front() != QLatin1String("127")) return std::nullopt;
  for (const QString& part : parts) {
    const auto number = decimal(part, 255);
    if (!number) return std::nullopt;
    address = address << 8 | static_cast<quint32>(*number);
  }
  return QHostAddress(address);
}

std::optional<QHostAddress> loopbackHost(const QString& text) {
  if (text.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0) return QHostAddress(QHostAddress::LocalHost);
  if (text == QLatin1String("::1")) return QHostAddress(QHostAddress::LocalHostIPv6);
  return loopbackIPv4(text);
}

std::optional<FileURL> socketFile(const QString& path) {
  const FileURL url = FileURL::fromPath(path);
  if (url.isEmpty() || url.path().size() >= sizeof(sockaddr_un::sun_path)) return std::nullopt;
  return url;
}

struct HostAndPort {
  QString host;
  std::optional<QString> port;
};

/// Splits at the port's colon, which is none of those of an address of version 6.
std::optional<HostAndPort> split(const QString& text) {
  if (text.startsWith(QLatin1Char('['))) {
    const qsizetype end = text.indexOf(QLatin1Char(']'));
    // In brackets stands an address of version 6 and nothing else.
    if (end < 0 || !text.left(end).contains(QLatin1Char(':'))) return std::nullopt;
    const QString rest = text.mid(end + 1);
    if (!rest.isEmpty() && !rest.startsWith(QLatin1Char(':'))) return std::nullopt;
    return HostAndPort{text.mid(1, end - 1), rest.isEmpty() ? std::nullopt : std::optional(rest.mid(1))};
  }
  const qsizetype colon = text.indexOf(QLatin1Char(':'));
  if (colon < 0 || text.count(QLatin1Char(':')) > 1) return HostAndPort{text, std::nullopt};
  return HostAndPort{text.left(colon), text.mid(colon + 1)};
}

}  // namespace

LocalServerAddress LocalServerAddress::loopback(uint16_t port) {
  return LocalServerAddress(Tcp{QHostAddress(QHostAddress::LocalHost), port});
}

std::optional<LocalServerAddress> LocalServerAddress::parse(const QString& text, uint16_t usualPort) {
  QString rest = text.trimmed();
  const bool isPath = rest.startsWith(QLatin1Char('/'));
  if (isPath || rest.startsWith(kUnix)) {
    if (!isPath) rest = rest.mid(kUnix.size());
    // "unix:///run/x" and "unix:/run/x" are the same place; "unix://host/x" is none.
    if (!isPath && rest.startsWith(QLatin1String("///"))) rest = rest.mid(2);
    if (rest.startsWith(QLatin1String("//"))) return std::nullopt;
    const auto file = socketFile(rest);
    return file ? std::optional(LocalServerAddress(*file)) : std::nullopt;
  }

  const bool namesHttp = rest.startsWith(kHttp, Qt::CaseInsensitive);
  if (namesHttp) rest = rest.mid(kHttp.size());
  if (rest.endsWith(QLatin1Char('/'))) rest.chop(1);
  // What is left is a host with a port and nothing else: any user, path or query makes a text that is no such host.
  const auto place = split(rest);
  if (!place) return std::nullopt;
  const auto host = loopbackHost(place->host);
  if (!host) return std::nullopt;
  if (!place->port) return LocalServerAddress(Tcp{*host, namesHttp ? kHttpPort : usualPort});
  const auto port = decimal(*place->port, UINT16_MAX);
  if (!port || *port == 0) return std::nullopt;
  return LocalServerAddress(Tcp{*host, static_cast<uint16_t>(*port)});
}

std::optional<LocalServerAddress> LocalServerAddress::parseOfServer(const QString& text, uint16_t usualPort) {
  QString address = text.trimmed();
  const bool namesHttp = address.startsWith(kHttp, Qt::CaseInsensitive);
  const qsizetype start = namesHttp ? kHttp.size() : 0;
  const QString rest = address.mid(start);
  const auto meansAny = [&](const QString& host) {
    if (!rest.startsWith(host)) return false;
    const QString after = rest.mid(host.size());
    return after.isEmpty() || after.startsWith(QLatin1Char(':')) || after == QLatin1String("/");
  };
  if (meansAny(QStringLiteral("0.0.0.0"))) {
    address.replace(start, 7, QStringLiteral("127.0.0.1"));
  } else if (meansAny(QStringLiteral("[::]"))) {
    address.replace(start, 4, QStringLiteral("[::1]"));
  } else if (rest.startsWith(QLatin1Char(':')) && rest != QLatin1String("::1")) {
    address.insert(start, QStringLiteral("127.0.0.1"));
  }
  return parse(address, usualPort);
}

QByteArray LocalServerAddress::hostHeader() const {
  if (!tcp()) return "localhost";
  const QByteArray host = tcp()->host.toString().toLatin1();
  const bool isVersion6 = tcp()->host.protocol() == QAbstractSocket::IPv6Protocol;
  return (isVersion6 ? "[" + host + "]" : host) + ":" + QByteArray::number(tcp()->port);
}

}  // namespace quillmere
