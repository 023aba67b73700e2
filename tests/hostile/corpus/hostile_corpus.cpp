/// hostile_corpus FOLDER: writes the hostile pictures that are no larger than a megabyte, as seeds for the fuzzer.

#include <QtGui/QGuiApplication>
#include <cstdio>
#include <fstream>

#include "hostile/HostilePictures.h"

int main(int argc, char** argv) {
  constexpr size_t kLargest = 1 << 20;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  if (argc != 2) return 1;
  for (const auto& picture : quillmere::testing::hostilePictures()) {
    const std::string bytes = picture.bytes();
    if (bytes.size() > kLargest) continue;
    std::ofstream file(std::string(argv[1]) + "/" + picture.name, std::ios::binary);
    if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) return 1;
  }
  return 0;
}
