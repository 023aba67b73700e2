#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/linux/capture/CaptureMarks.h"
#include "platform/linux/capture/CaptureNames.h"

using namespace quillmere;

/// The first bytes up to a newline are a file's name, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const auto newline = input.find('\n');
  CaptureName::of(input.substr(0, std::min(newline, size_t{255})));
  if (newline == std::string::npos) return 0;
  const int descriptor = ::memfd_create("capture", 0);
  const std::string content = input.substr(newline + 1);
  if (::write(descriptor, content.data(), content.size()) != static_cast<ssize_t>(content.size())) std::abort();
  const auto chunks = CaptureMarks::readTextChunks(FileURL::fromPath("/proc/self/fd/" + std::to_string(descriptor)));
  for (const auto& [key, value] : chunks) {
    if (key.empty() || key.size() + value.size() > content.size()) std::abort();
  }
  ::close(descriptor);
  return 0;
}
