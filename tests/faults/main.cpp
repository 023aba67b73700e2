#include <gtest/gtest.h>
#include <QtCore/QCoreApplication>
#include <cstdlib>

#include "foundation/FileStatus.h"
#include "support/PrivateEnvironment.h"

namespace {

/// Has the thousands of cases run in memory, where that keeps birth times, by which the program knows a file again: on
/// a disk that others use too they take minutes.
void preferMemory() {
  const auto memory = quillmere::FileURL::fromPath(std::string_view("/dev/shm"));
  const auto status = quillmere::fileStatus(memory);
  if (status && status->created) ::setenv("TMPDIR", memory.c_str(), 0);
}

}  // namespace

int main(int argc, char** argv) {
  preferMemory();
  const quillmere::testing::PrivateEnvironment environment;
  ::testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
