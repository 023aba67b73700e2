#pragma once

#include <QtCore/QByteArray>
#include <optional>

#include "foundation/FileURL.h"

namespace quillmere {

/// Where updates come from, and whose they must be. None is the rule: then nothing is loaded and nobody is asked.
struct UpdateConfiguration {
  QByteArray feed;            ///< "https://…"
  QByteArray key;             ///< the maker's public key, 32 bytes
  FileURL authority;          ///< the only certificate authority that counts; empty for the system's
  bool isSingleFile = false;  ///< the program is one file, which is replaced; else its package is installed
  FileURL library;
  FileURL program;

  bool operator==(const UpdateConfiguration&) const = default;

  /// What the packager has put beside the program ("share/quillmere/update.json" of its prefix), else what was given
  /// when it was built. Nothing that the person or another program can set counts, and no file in a place that others
  /// than the program's owner can write to. A packager's file that can't be used is none, not the builder's.
  static std::optional<UpdateConfiguration> ofProgram(const FileURL& program);
  /// The same of a packager's file: url, key (Base64), and where wanted authority (a name beside the file) and form
  /// ("package" or "single-file"), nothing else.
  static std::optional<UpdateConfiguration> read(const QByteArray& json, const FileURL& program);
};

}  // namespace quillmere
