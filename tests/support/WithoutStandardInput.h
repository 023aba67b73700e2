#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace quillmere::testing {

/// While this lives the next file that is opened gets descriptor 0, as in a program that was started with its standard
/// input closed.
class WithoutStandardInput {
 public:
  WithoutStandardInput() : kept_(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) { ::close(STDIN_FILENO); }
  WithoutStandardInput(const WithoutStandardInput&) = delete;
  WithoutStandardInput& operator=(const WithoutStandardInput&) = delete;
  ~WithoutStandardInput() {
    if (kept_ < 0) return;
    ::dup2(kept_, STDIN_FILENO);
    ::close(kept_);
  }

 private:
  int kept_;
};

}  // namespace quillmere::testing
