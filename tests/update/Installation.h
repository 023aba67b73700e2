#pragma once

#include <QtCore/QByteArray>
#include <filesystem>
#include <fstream>

#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// An installed program in a folder of its own.
class Installation {
 public:
  Installation() {
    for (const char* part : {"bin", "lib/quillmere", "share/quillmere"}) {
      std::filesystem::create_directories(folder_.file(part).path());
    }
    std::ofstream(program().path()) << "the program";
  }
  FileURL program() const { return folder_.file("bin/quillmere"); }
  FileURL configuration() const { return folder_.file("share/quillmere/update.json"); }
  FileURL library() const { return folder_.file("lib/quillmere/libquillmere-update.so"); }
  FileURL file(const char* name) const { return folder_.file(name); }

  void configure(const QByteArray& json) const { std::ofstream(configuration().path()) << json.toStdString(); }
  void install(const char* libraryFile) const {
    std::filesystem::copy_file(libraryFile, library().path(), std::filesystem::copy_options::overwrite_existing);
  }

  static QByteArray key() { return QByteArray(32, 'k'); }
  static QByteArray good() { return R"({"url":"https://updates.example/feed","key":")" + key().toBase64() + R"("})"; }

 private:
  TemporaryFolder folder_;
};

}  // namespace quillmere::testing
