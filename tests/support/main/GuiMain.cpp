#include <gtest/gtest.h>
#include <QtGui/QGuiApplication>

#include "support/PrivateEnvironment.h"

/// The encoder of HEVC frees its own memory but for a kilobyte a picture.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the leak checker asks by this name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libx265\n";
}

int main(int argc, char** argv) {
  const quillmere::testing::PrivateEnvironment environment;
  ::testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
