#include "foundation/FileURL.h"

#include <array>
#include <cstdlib>
#include <vector>

namespace quillmere {
namespace {

constexpr std::string_view kScheme = "file://";

/// RFC 3986 `pchar` and the slash, less the ";" that some readers take for a parameter.
constexpr bool staysPlain(unsigned char c) {
  if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
  return std::string_view("-._~!$&'()*+,=:@/").find(static_cast<char>(c)) != std::string_view::npos;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// Where the extension's full stop stands, or npos.
size_t extensionDot(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == 0 || dot + 1 == name.size() ? std::string_view::npos : dot;
}

QString toDisplay(std::string_view bytes) {
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace

FileURL FileURL::fromPath(std::string_view path) {
  if (path.empty() || path.front() != '/' || path.find('\0') != std::string_view::npos) return {};
  return FileURL(std::string(path));
}

FileURL FileURL::fromPath(const QString& path) {
  const QByteArray bytes = path.toUtf8();
  return fromPath(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
}

std::optional<FileURL> FileURL::fromCoded(std::string_view coded) {
  if (!coded.starts_with(kScheme)) return std::nullopt;
  coded.remove_prefix(kScheme.size());
  constexpr std::string_view kLocalHost = "localhost";
  if (coded.starts_with(kLocalHost)) coded.remove_prefix(kLocalHost.size());
  if (coded.empty() || coded.front() != '/') return std::nullopt;

  std::string path;
  path.reserve(coded.size());
  for (size_t i = 0; i < coded.size(); ++i) {
    if (coded[i] != '%') {
      path.push_back(coded[i]);
      continue;
    }
    if (i + 2 >= coded.size()) return std::nullopt;
    const int high = hexValue(coded[i + 1]);
    const int low = hexValue(coded[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    path.push_back(static_cast<char>(high * 16 + low));
    i += 2;
  }
  if (path.find('\0') != std::string::npos) return std::nullopt;
  return FileURL(std::move(path));
}

std::string FileURL::coded() const {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string result(kScheme);
  result.reserve(kScheme.size() + path_.size() + 16);
  for (const char c : path_) {
    const auto byte = static_cast<unsigned char>(c);
    if (staysPlain(byte)) {
      result.push_back(c);
    } else {
      result.push_back('%');
      result.push_back(kHex[byte >> 4]);
      result.push_back(kHex[byte & 15]);
    }
  }
  return result;
}

std::string FileURL::lastPathComponent() const {
  std::string_view path = path_;
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return std::string(path.size() == 1 ? path : path.substr(slash + 1));
}

std::string FileURL::stem() const {
  const std::string name = lastPathComponent();
  return name.substr(0, extensionDot(name));
}

std::string FileURL::pathExtension() const {
  const std::string name = lastPathComponent();
  const auto dot = extensionDot(name);
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

FileURL FileURL::parent() const {
  std::string_view path = path_;
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return FileURL(std::string(slash == 0 ? "/" : path.substr(0, slash)));
}

FileURL FileURL::appending(std::string_view name) const {
  std::string path;
  path.reserve(path_.size() + 1 + name.size());
  path = path_;
  if (path.empty() || path.back() != '/') path.push_back('/');
  path.append(name);
  return FileURL(std::move(path));
}

FileURL FileURL::standardized() const {
  if (path_.empty()) return {};
  std::vector<std::string_view> components;
  std::string_view rest = path_;
  while (!rest.empty()) {
    const auto slash = rest.find('/');
    const auto component = rest.substr(0, slash);
    rest.remove_prefix(slash == std::string_view::npos ? rest.size() : slash + 1);
    if (component.empty() || component == ".") continue;
    if (component != "..") {
      components.push_back(component);
    } else if (!components.empty()) {
      components.pop_back();
    }
  }
  std::string result;
  result.reserve(path_.size());
  for (const auto component : components) {
    result.push_back('/');
    result.append(component);
  }
  return FileURL(result.empty() ? std::string("/") : std::move(result));
}

std::optional<FileURL> FileURL::resolvingSymlinks() const {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path_.c_str(), nullptr), &std::free);
  if (!real) return std::nullopt;
  return FileURL(std::string(real.get()));
}

QString FileURL::displayName() const {
  return toDisplay(lastPathComponent());
}
QString FileURL::displayStem() const {
  return toDisplay(stem());
}

}  // namespace quillmere
