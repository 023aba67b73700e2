#pragma once

#include <QtCore/QString>
#include <compare>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillmere {

/// The place of a file: an absolute path, kept as the bytes that the kernel knows. A name that is not valid UTF-8
/// survives every operation but `display…`, whose texts are for people only.
class FileURL {
 public:
  FileURL() = default;
  /// `path` must begin with "/" and hold no NUL; anything else gives an empty URL.
  static FileURL fromPath(std::string_view path);
  static FileURL fromPath(const QString& path);
  static FileURL fromPath(const char* path) { return fromPath(std::string_view(path)); }
  /// Reads the coded form. None unless it is a `file:` URL of this machine with an absolute path and no NUL.
  static std::optional<FileURL> fromCoded(std::string_view coded);

  /// "file://" and the path, percent-escaped as RFC 3986 asks of a path, with ";" escaped too.
  std::string coded() const;
  const std::string& path() const { return path_; }
  const char* c_str() const { return path_.c_str(); }
  bool isEmpty() const { return path_.empty(); }

  std::string lastPathComponent() const;
  /// The name without its extension. A name that only begins with a full stop has no extension.
  std::string stem() const;
  /// Without the full stop, in the case that stands in the name.
  std::string pathExtension() const;
  FileURL parent() const;
  FileURL appending(std::string_view name) const;
  /// Lexically: no empty, "." or ".." components, no slash at the end.
  FileURL standardized() const;
  /// The real path, if everything on it exists.
  std::optional<FileURL> resolvingSymlinks() const;

  QString displayPath() const { return QString::fromUtf8(path_.data(), static_cast<qsizetype>(path_.size())); }
  QString displayName() const;
  QString displayStem() const;

  auto operator<=>(const FileURL&) const = default;

 private:
  explicit FileURL(std::string path) : path_(std::move(path)) {}
  std::string path_;
};

/// Hashes a URL or its bare path, so that a table can be asked about a path without making a URL of it.
struct FileURLHash {
  using is_transparent = void;
  size_t operator()(const FileURL& url) const { return std::hash<std::string_view>{}(url.path()); }
  size_t operator()(std::string_view path) const { return std::hash<std::string_view>{}(path); }
};
struct FileURLEqual {
  using is_transparent = void;
  bool operator()(const FileURL& a, const FileURL& b) const { return a.path() == b.path(); }
  bool operator()(const FileURL& a, std::string_view b) const { return a.path() == b; }
  bool operator()(std::string_view a, const FileURL& b) const { return a == b.path(); }
};

}  // namespace quillmere

template <>
struct std::hash<quillmere::FileURL> {
  size_t operator()(const quillmere::FileURL& url) const { return quillmere::FileURLHash{}(url); }
};
