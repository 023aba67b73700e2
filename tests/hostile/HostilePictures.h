#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace quillmere::testing {

/// A file that is out to cost, to confuse or to break whoever reads it as a picture, and what becomes of it.
struct HostilePicture {
  std::string name;
  std::function<std::string()> bytes;
  /// What its header tells; what reading it gives; whether it is whole: sizes, or why there is none.
  std::string outcome;
  /// So large is the file, with nothing written behind its bytes; not sparse where it is zero.
  int64_t sparseSize = 0;
  int64_t mostMegabytes = 32;  ///< of memory beyond what the process had
  /// Of it. The whole is read three times at most: as a picture, as a small one and for its end.
  int64_t mostBytesRead = int64_t{96} << 20;
};

/// For the test that fails.
inline void PrintTo(const HostilePicture& picture, std::ostream* stream) {
  *stream << picture.name;
}

std::vector<HostilePicture> hostilePngs();
std::vector<HostilePicture> hostilePngData();
std::vector<HostilePicture> hostileJpegs();
std::vector<HostilePicture> hostileHeifs();
std::vector<HostilePicture> hostileHeifItems();
std::vector<HostilePicture> otherFiles();
/// One that is within its budget, and takes whom it may for a long time.
std::string longJpeg();

/// All of them, each with a name of its own.
inline std::vector<HostilePicture> hostilePictures() {
  std::vector<HostilePicture> all;
  for (const auto& some :
       {hostilePngs(), hostilePngData(), hostileJpegs(), hostileHeifs(), hostileHeifItems(), otherFiles()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace quillmere::testing
